// The material dialog as the README shows it. The test grabs the dialog
// offscreen and checks the picture; with TAMERISK_SCREENSHOT set to a file
// path it also writes the picture there:
//
//   TAMERISK_SCREENSHOT=docs/images/material-dialog.png build/bin/test_dialogs \
//       --gtest_filter=Screenshot.*
#include <QImage>
#include <QPixmap>
#include <gtest/gtest.h>

#include <tamerisk/dlg_attribute.h>

#include "dialogs/dialog_template.h"
#include "dialogs/templates.h"

namespace {

TEST(Screenshot, MaterialDialogRendersWhole)
{
    CDlgAttribute dialog(nullptr);
    ASSERT_TRUE(dialog.Create());
    FZAttributeEx material;
    material.color.SetBytes(200, 60, 40);
    material.highlightColor.SetBytes(255, 240, 200);
    material.reflection = 0.25f;
    material.smoothHighlight = 1;
    dialog.SetAttribute(material);
    dialog.UpdatePanelView();
    dialog.show();

    const QImage shot = dialog.grab().toImage();
    EXPECT_EQ(shot.size(), dialog.size());
    // The surface swatch shows the surface colour.
    QWidget* swatch = GetDlgItem(&dialog, kIdColorSwatch);
    const QPoint corner = swatch->geometry().topLeft() + QPoint(2, 2);
    EXPECT_EQ(QColor(shot.pixel(corner)), QColor(200, 60, 40));

    const QByteArray path = qgetenv("TAMERISK_SCREENSHOT");
    if (!path.isEmpty())
        EXPECT_TRUE(shot.save(QString::fromLocal8Bit(path)));
}

} // namespace
