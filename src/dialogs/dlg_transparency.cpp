#include "dialogs/dlg_transparency.h"

#include <QCheckBox>
#include <QScrollBar>

#include "dialogs/dialog_template.h"
#include "dialogs/templates.h"

namespace {

enum : int {
    kIdIncidence = 4037,
    kIdAttenuation = 4038,
    kIdPreviousShape = 4024,
    kIdNextShape = 4023,
    kIdThinGlass = 4043,
    kIdThickness = 4046,
};

constexpr int kSliderMax = 20;
constexpr int kThicknessMin = 1;
constexpr int kThicknessMax = 20;

} // namespace

CDlgTransparency::CDlgTransparency(QWidget* parent)
    : CParameterDialog(TransparencyDialogTemplate(), kIdPreviousShape, kIdNextShape, parent)
{
    ConnectHandlers();
}

void CDlgTransparency::ConnectHandlers()
{
    for (int id : {kIdIncidence, kIdAttenuation})
        ConnectHScroll(DlgItem<QScrollBar>(this, id),
                       [this](QScrollBar* bar, int) { OnHScroll(bar); });
    if (auto* thinGlass = DlgItem<QCheckBox>(this, kIdThinGlass))
        connect(thinGlass, &QCheckBox::clicked, this, &CDlgTransparency::OnCheckThinGlass);
    if (auto* thickness = DlgItem<CSpinButton>(this, kIdThickness))
        connect(thickness, &CSpinButton::positionChanged, this,
                &CDlgTransparency::OnThicknessChanged);
}

void CDlgTransparency::OnInitDialog()
{
    SetScrollBar(DlgItem<QScrollBar>(this, kIdIncidence), kSliderMax,
                 FZTruncate(kSliderMax * static_cast<double>(record.incidenceDependence)));
    SetScrollBar(DlgItem<QScrollBar>(this, kIdAttenuation), kSliderMax,
                 FZTruncate(kSliderMax * static_cast<double>(record.attenuation)));
    CheckDlgButton(this, kIdThinGlass, record.thinGlass != 0);
    if (auto* thickness = DlgItem<CSpinButton>(this, kIdThickness)) {
        thickness->SetRange(kThicknessMin, kThicknessMax);
        // The spin holds a thickness beyond its range (or NaN, which
        // truncates to 0) at the nearer end.
        thickness->SetPos(FZTruncate(static_cast<double>(record.thickness)));
    }
    SetUpPreview();
}

void CDlgTransparency::OnHScroll(QScrollBar* bar)
{
    // The value follows the position the slider shows, so a step beyond
    // either end gives the end's value.
    const float value = static_cast<float>(static_cast<double>(bar->value()) / bar->maximum());
    if (bar->objectName().toInt() == kIdIncidence)
        record.incidenceDependence = value;
    else
        record.attenuation = value;
    Refresh();
}

void CDlgTransparency::OnCheckThinGlass()
{
    record.thinGlass = IsDlgButtonChecked(this, kIdThinGlass) ? 1 : 0;
    Refresh();
}

void CDlgTransparency::OnThicknessChanged(int position)
{
    // The position after the click: the value follows what the spin shows.
    record.thickness = static_cast<float>(position);
    Refresh();
}
