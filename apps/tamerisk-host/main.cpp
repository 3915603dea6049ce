// tamerisk-host: a small host application for the material editor. It opens
// the editor of the C functions with a material and shows what the editor
// sends back when the user presses "更新"; two more materials have editors of
// their own that the host owns.
//
//   tamerisk-host [--open FILE.qva | FILE.qva] [--screenshot OUT.png]
//
// --screenshot opens the editor, saves a picture of its window and exits;
// with QT_QPA_PLATFORM=offscreen it needs no display.
#include <cstdio>
#include <memory>

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QPixmap>

#include <tamerisk/version.h>

#include "host_window.h"
#include "qva_reader.h"

namespace {

// The C functions through the table the host window uses, which a host that
// loads the library at run time fills with TameriskResolveFunctions.
TameriskFunctions LinkedFunctions()
{
    TameriskFunctions f;
    f.Open = Tamerisk_Open;
    f.Close = Tamerisk_Close;
    f.SetAttribute = Tamerisk_SetAttribute;
    f.GetAttribute = Tamerisk_GetAttribute;
    f.SetColorBind = Tamerisk_SetColorBind;
    f.GetColorBind = Tamerisk_GetColorBind;
    f.ShowWindow = Tamerisk_ShowWindow;
    f.GetShow = Tamerisk_GetShow;
    f.SetTitle = Tamerisk_SetTitle;
    f.GetLastResult = Tamerisk_GetLastResult;
    f.GetVersion = Tamerisk_GetVersion;
    return f;
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
    QWidget* editor = host.EditorWindow();
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
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"),
        QStringLiteral("Open the editor, save a picture of its window and exit."),
        QStringLiteral("OUT.png"));
    parser.addOptions({open, screenshot});
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

    const TameriskFunctions api = LinkedFunctions();
    QString error;

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
