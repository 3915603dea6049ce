// preset-sheet: draws the picture of the presets that the README shows,
// every material on a sample shape with its name beneath.
//
//   preset-sheet [--size N] [--columns C] [--shape N] OUT.png FILE...
//
// The pictures are the preview's (preview/preview_picture.h), with the
// groove noise seeded by a fixed number so that the sheet is the same at
// every run. A material's name is its file name without the extension,
// with dashes read as spaces.
#include <QCommandLineParser>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstdio>
#include <vector>

#include "engine/random.h"
#include "json/material_json.h"
#include "preview/preview_picture.h"

namespace {

constexpr int kCaptionHeight = 22;
constexpr int kGap = 8;

int Fail(const QString& message)
{
    std::fprintf(stderr, "preset-sheet: %s\n", qPrintable(message));
    return 1;
}

QString NameOf(const QString& file)
{
    QString name = QFileInfo(file).completeBaseName().replace(QLatin1Char('-'), QLatin1Char(' '));
    if (!name.isEmpty())
        name[0] = name[0].toUpper();
    return name;
}

QImage PictureOf(const FZImage& frame)
{
    QImage picture(frame.width, frame.height, QImage::Format_RGB888);
    CopyFrameToRgb(frame, picture.bits(), picture.bytesPerLine());
    return picture;
}

int Value(const QCommandLineParser& parser, const QString& option, int lowest, int highest, bool& ok)
{
    const int v = parser.value(option).toInt(&ok);
    ok = ok && v >= lowest && v <= highest;
    return v;
}

} // namespace

int main(int argc, char** argv)
{
    // Text needs a platform plugin, never a display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Draws the materials with their names on one picture."));
    parser.addHelpOption();
    parser.addOptions({{QStringLiteral("size"), QStringLiteral("Picture size of each material."),
                        QStringLiteral("N"), QStringLiteral("128")},
                       {QStringLiteral("columns"), QStringLiteral("Materials in a row."), QStringLiteral("C"),
                        QStringLiteral("6")},
                       {QStringLiteral("shape"), QStringLiteral("Sample shape, 1 to 4."), QStringLiteral("N"),
                        QStringLiteral("1")}});
    parser.addPositionalArgument(QStringLiteral("OUT.png"), QStringLiteral("The picture to write."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Materials (.qva or JSON)."),
                                 QStringLiteral("FILE..."));
    parser.process(app);
    bool sizeOk = false, columnsOk = false, shapeOk = false;
    const int size = Value(parser, QStringLiteral("size"), 16, 1024, sizeOk);
    const int columns = Value(parser, QStringLiteral("columns"), 1, 64, columnsOk);
    const int shape = Value(parser, QStringLiteral("shape"), 1, 4, shapeOk);
    const QStringList arguments = parser.positionalArguments();
    if (!sizeOk || !columnsOk || !shapeOk || arguments.size() < 2)
        return Fail(QStringLiteral("expected OUT.png and at least one material; try --help"));

    FZRandom::SetFixedSeed(1u);
    const QStringList files = arguments.mid(1);
    const int rows = (static_cast<int>(files.size()) + columns - 1) / columns;
    const int cellWidth = size + kGap;
    const int cellHeight = size + kCaptionHeight + kGap;
    QImage sheet(kGap + columns * cellWidth, kGap + rows * cellHeight, QImage::Format_RGB888);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    QFont font = painter.font();
    font.setPixelSize(13);
    painter.setFont(font);
    FZPreviewPicture picture;
    for (int i = 0; i < files.size(); ++i) {
        FZAttributeEx material;
        QString error;
        if (LoadMaterial(files[i], material, error) != FZResult::Ok)
            return Fail(error);
        if (picture.Draw(material, shape, size, size, 0) != FZResult::Ok)
            return Fail(QStringLiteral("cannot draw %1").arg(files[i]));
        const int x = kGap + (i % columns) * cellWidth;
        const int y = kGap + (i / columns) * cellHeight;
        painter.drawImage(x, y, PictureOf(*picture.Frame()));
        painter.drawText(QRect(x, y + size, size, kCaptionHeight), Qt::AlignCenter, NameOf(files[i]));
    }
    painter.end();
    if (!sheet.save(arguments.front(), "PNG"))
        return Fail(QStringLiteral("cannot write %1").arg(arguments.front()));
    return 0;
}
