// A host built against an installed Tamerisk only (its headers and
// libtamerisk.so from the prefix, found through find_package or pkg-config),
// with every warning an error, -Wdouble-promotion included. It opens the
// editor, hands a material over, reads it back and closes it.
#include <cstdio>
#include <cstring>

#include <QApplication>
#include <QWidget>

#include <tamerisk/tamerisk.h>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QWidget window;
    if (Tamerisk_GetVersion() != TAMERISK_VERSION) {
        std::fprintf(stderr, "host: library %x, headers %x\n", Tamerisk_GetVersion(), TAMERISK_VERSION);
        return 1;
    }
    if (Tamerisk_Open(&window, 1001) != 1) {
        std::fprintf(stderr, "host: the editor did not open (%d)\n", Tamerisk_GetLastResult());
        return 1;
    }
    FZAttributeEx sent;
    sent.diffuse = 0.5f;
    sent.color.SetFloats(0.25f, 0.5f, 1.0f);
    Tamerisk_SetAttribute(&sent);
    FZAttributeEx back;
    Tamerisk_GetAttribute(&back);
    Tamerisk_Close();
    if (std::memcmp(&sent, &back, sizeof sent) != 0) {
        std::fprintf(stderr, "host: the material came back changed\n");
        return 1;
    }
    std::printf("host: Tamerisk %s works\n", TAMERISK_VERSION_STRING);
    return 0;
}
