// The dialogs as the guides show them, at the screen's own pixels. With
// TAMERISK_SCREENSHOT_DIR set the picture is written there (see docs/testing.md).
#include <QApplication>
#include <QDir>
#include <QProcess>
#include <gtest/gtest.h>

#include <tamerisk/dlg_attribute.h>

#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "engine/display/image_display.h"
#include "preview/preview_panel.h"
#include "support/parameter_dialogs.h"

namespace {

void Save(const QImage& picture, const char* name)
{
    const QString directory = qEnvironmentVariable("TAMERISK_SCREENSHOT_DIR");
    if (!directory.isEmpty() && QDir().mkpath(directory))
        EXPECT_TRUE(picture.save(QDir(directory).filePath(QString::fromLatin1(name))));
}

// The preview's frame is rendered at the control's size in device pixels,
// the very pixels the panel renders for a frame of that size, and shown
// unscaled. At scale 1 the test runs itself again at scale 2.
TEST(Screenshot, MaterialDialogAtTheScreensPixels)
{
    FZAttributeEx red;
    red.color.SetBytes(200, 60, 40);
    red.highlightColor.SetBytes(255, 240, 200);
    red.reflection = 0.25f;
    red.smoothHighlight = 1;
    CDlgAttribute dialog(nullptr);
    ASSERT_TRUE(dialog.Create());
    dialog.SetAttribute(red);
    dialog.UpdatePanelView();
    dialog.show();
    const QImage shot = dialog.grab().toImage();
    const qreal ratio = dialog.devicePixelRatioF();
    ASSERT_EQ(shot.size(), dialog.size() * ratio);
    const QPoint corner = GetDlgItem(&dialog, kIdColorSwatch)->geometry().topLeft() + QPoint(2, 2);
    EXPECT_EQ(QColor(shot.pixel(corner * ratio)), QColor(200, 60, 40));
    Save(shot, "material-dialog.png");

    const auto* canvas = DlgItem<FZCanvas>(&dialog, kIdPreview);
    QImage shown = canvas->Surface();
    ASSERT_EQ(shown.size(), canvas->size() * ratio);
    CPreviewPanel panel;
    ASSERT_EQ(panel.SetUpFrame(shown.width(), shown.height()), FZResult::Ok);
    ASSERT_EQ(panel.ApplyMaterial(red, 0), FZResult::Ok);
    shown.setDevicePixelRatio(1.0);
    EXPECT_EQ(shown, MakeBitmap(*panel.Scene()->frame));
    const QRect place(canvas->geometry().topLeft() * ratio, shown.size());
    EXPECT_EQ(shot.copy(place).convertToFormat(QImage::Format_RGB888), shown);

    if (ratio == 1.0) {
        QProcess again;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
        environment.remove(QStringLiteral("TAMERISK_SCREENSHOT_DIR"));
        again.setProcessEnvironment(environment);
        again.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--gtest_filter=Screenshot.MaterialDialog*")});
        ASSERT_TRUE(again.waitForFinished(60000));
        EXPECT_EQ(again.exitCode(), 0) << again.readAllStandardOutput().toStdString();
    }
}

} // namespace
