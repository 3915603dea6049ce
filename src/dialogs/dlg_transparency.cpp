#include "dialogs/dlg_transparency.h"

#include <QCheckBox>
#include <QScrollBar>
#include <QSpinBox>

#include "dialogs/dialog_template.h"
#include "dialogs/slider_value_tip.h"
#include "dialogs/templates.h"

namespace {

constexpr int kSliderMax = 20;
constexpr int kThicknessMin = 1;
constexpr int kThicknessMax = 20;

} // namespace

CDlgTransparency::CDlgTransparency(QWidget* parent)
    : CParameterDialog(TransparencyDialogTemplate(), transparency_id::kPreviousShape,
                       transparency_id::kNextShape, parent),
      incidence(controls.Get<QScrollBar>(transparency_id::kIncidence)),
      attenuation(controls.Get<QScrollBar>(transparency_id::kAttenuation)),
      thinGlass(controls.Get<QCheckBox>(transparency_id::kThinGlass)),
      thickness(controls.Get<QSpinBox>(transparency_id::kThickness))
{
    thickness->setRange(kThicknessMin, kThicknessMax);
    ConnectHandlers();
}

void CDlgTransparency::ConnectHandlers()
{
    ConnectHScroll(incidence, [this](QScrollBar*, int) {
        record.incidenceDependence = SliderValue(incidence);
        Refresh();
    });
    ConnectHScroll(attenuation, [this](QScrollBar*, int) {
        record.attenuation = SliderValue(attenuation);
        Refresh();
    });
    AttachValueTip(incidence, [this](int) {
        return ValueTipText(QT_TRANSLATE_NOOP("Tamerisk", "入射角依存率"), SliderValue(incidence));
    });
    AttachValueTip(attenuation,
                   [this](int) { return ValueTipText(QT_TRANSLATE_NOOP("Tamerisk", "減衰率"), SliderValue(attenuation)); });
    connect(thinGlass, &QCheckBox::clicked, this, &CDlgTransparency::OnCheckThinGlass);
    connect(thickness, &QSpinBox::valueChanged, this, &CDlgTransparency::OnThicknessChanged);
}

void CDlgTransparency::OnInitDialog()
{
    SetScrollBar(incidence, kSliderMax,
                 FZTruncate(kSliderMax * static_cast<double>(record.incidenceDependence)));
    SetScrollBar(attenuation, kSliderMax,
                 FZTruncate(kSliderMax * static_cast<double>(record.attenuation)));
    SetButtonChecked(thinGlass, record.thinGlass != 0);
    // The spin holds a thickness beyond its range (or NaN, which truncates
    // to 0) at the nearer end; showing it is no edit.
    const QSignalBlocker quiet(thickness);
    thickness->setValue(FZTruncate(static_cast<double>(record.thickness)));
    SetUpPreview();
}

float CDlgTransparency::SliderValue(const QScrollBar* bar)
{
    // The value follows the position the slider shows, so a step beyond
    // either end gives the end's value.
    return static_cast<float>(static_cast<double>(bar->value()) / bar->maximum());
}

void CDlgTransparency::OnCheckThinGlass()
{
    record.thinGlass = thinGlass->isChecked() ? 1 : 0;
    Refresh();
}

void CDlgTransparency::OnThicknessChanged(int value)
{
    // The value follows what the spin box shows.
    record.thickness = static_cast<float>(value);
    Refresh();
}
