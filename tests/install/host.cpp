// A host built against an installed Tamerisk only (its headers and
// libtamerisk.so from the prefix, found through find_package or pkg-config),
// with every warning an error, -Wdouble-promotion included. It opens the
// editor of the C functions beside one editor it owns, hands each its own
// material, reads both back and closes them.
#include <cstdio>
#include <cstring>
#include <memory>

#include <QApplication>
#include <QWidget>

#include <tamerisk/dlg_attribute.h>
#include <tamerisk/tamerisk.h>

namespace {

int Fail(const char* what)
{
    std::fprintf(stderr, "host: %s (%d)\n", what, Tamerisk_GetLastResult());
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QWidget window;
    if (Tamerisk_GetVersion() != TAMERISK_VERSION)
        return Fail("the library's version is not the headers'");
    auto owned = std::make_unique<CDlgAttribute>(&window, 1002u);
    if (!owned->Create() || Tamerisk_Open(&window, 1001) != 1)
        return Fail("the editors did not open");
    FZAttributeEx sent, blue;
    sent.diffuse = 0.5f;
    sent.color.SetFloats(0.25f, 0.5f, 1.0f);
    blue.color.SetBytes(0, 0, 255);
    Tamerisk_SetAttribute(&sent);
    owned->SetAttribute(blue);
    owned->SetColorBind(1);
    FZAttributeEx back, ownedBack;
    Tamerisk_GetAttribute(&back);
    owned->GetAttribute(ownedBack);
    if (std::memcmp(&sent, &back, sizeof sent) != 0 || std::memcmp(&blue, &ownedBack, sizeof blue) != 0
        || owned->GetColorBind() != 1)
        return Fail("a material came back changed");
    owned.reset();
    if (Tamerisk_GetShow() == TAMERISK_NO_EDITOR)
        return Fail("deleting the host's own editor closed the other");
    Tamerisk_Close();
    std::printf("host: Tamerisk %s works\n", TAMERISK_VERSION_STRING);
    return 0;
}
