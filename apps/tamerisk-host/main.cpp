// tamerisk-host: a small host application for the material editor. It loads
// libtamerisk.so at run time, opens the editor with a material, and shows
// what the editor sends back when the user presses "更新".
//
//   tamerisk-host [--open FILE.qva | FILE.qva] [--library PATH] [--screenshot OUT.png]
//
// --screenshot opens the editor, saves a picture of its window and exits;
// with QT_QPA_PLATFORM=offscreen it needs no display.
#include <cstdio>
#include <memory>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QPixmap>

#include <tamerisk/version.h>

#include "host_window.h"
#include "qva_reader.h"
#include "tamerisk_api.h"

namespace {

// The library beside the host: where cmake --install puts it, else where
// the build puts it.
QString DefaultLibraryPath()
{
    const QDir bin(QCoreApplication::applicationDirPath());
    const QString installed = QDir::cleanPath(bin.filePath(QStringLiteral(TAMERISK_INSTALLED_LIBRARY)));
    if (QFileInfo::exists(installed))
        return installed;
    return QDir::cleanPath(bin.filePath(QStringLiteral(TAMERISK_BUILT_LIBRARY)));
}

constexpr int kRunError = 1;
constexpr int kUsageError = 2;

int Fail(const QString& message)
{
    std::fprintf(stderr, "tamerisk-host: %s\n", qPrintable(message));
    return kRunError;
}

int SaveScreenshot(HostWindow& host, const QString& path)
{
    host.OpenEditor();
    QApplication::processEvents();
    QWidget* editor = HostWindow::EditorWindow();
    if (!editor)
        return Fail(QStringLiteral("the editor did not open"));
    if (!editor->grab().save(path))
        return Fail(QStringLiteral("cannot write %1").arg(path));
    std::printf("%s\n", qPrintable(QFileInfo(path).absoluteFilePath()));
    return 0;
}

// Whether the command line asks only for text (--help, --version): that
// needs no window system, so it must not need a display either.
bool OnlyPrints(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const QByteArray argument(argv[i]);
        if (argument == "--")
            break;
        for (const char* option : {"-h", "-?", "--help", "--help-all", "-v", "--version"}) {
            if (argument == option)
                return true;
        }
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    const std::unique_ptr<QCoreApplication> app = OnlyPrints(argc, argv)
                                                      ? std::make_unique<QCoreApplication>(argc, argv)
                                                      : std::make_unique<QApplication>(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(TAMERISK_VERSION_STRING));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("A small host for the Tamerisk material editor."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption open(QStringLiteral("open"),
                                  QStringLiteral("Start with the material of an attribute file."),
                                  QStringLiteral("FILE.qva"));
    const QCommandLineOption library(QStringLiteral("library"),
                                     QStringLiteral("The Tamerisk library to load."),
                                     QStringLiteral("PATH"), DefaultLibraryPath());
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"),
        QStringLiteral("Open the editor, save a picture of its window and exit."),
        QStringLiteral("OUT.png"));
    parser.addOptions({open, library, screenshot});
    // As the desktop opens a material file with it.
    parser.addPositionalArgument(QStringLiteral("FILE.qva"), QStringLiteral("The same as --open FILE.qva."),
                                 QStringLiteral("[FILE.qva]"));
    if (!parser.parse(QCoreApplication::arguments())) {
        Fail(parser.errorText());
        Fail(QStringLiteral("try 'tamerisk-host --help'"));
        return kUsageError;
    }
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(0);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();

    TameriskFunctions api;
    QString error;
    if (!LoadTamerisk(parser.value(library), api, error))
        return Fail(error);

    const QStringList files = parser.positionalArguments();
    if (files.size() > 1 || (!files.isEmpty() && parser.isSet(open))) {
        Fail(QStringLiteral("one material file at most"));
        return kUsageError;
    }
    const QString file = files.isEmpty() ? parser.value(open) : files.front();
    FZAttributeEx material;
    QString materialName;
    if (!file.isEmpty()) {
        error = ReadQvaFile(file, material);
        if (!error.isEmpty())
            return Fail(error);
        materialName = QFileInfo(file).fileName();
    }

    HostWindow host(api, material, materialName);
    if (parser.isSet(screenshot))
        return SaveScreenshot(host, parser.value(screenshot));
    host.show();
    host.OpenEditor();
    return QApplication::exec();
}
