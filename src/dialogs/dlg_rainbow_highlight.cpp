#include "dialogs/dlg_rainbow_highlight.h"

#include <cmath>

#include <QScrollBar>

#include "dialogs/dialog_template.h"
#include "dialogs/slider_value_tip.h"
#include "dialogs/templates.h"

namespace {

constexpr int kSliderMax = 20;
constexpr double kSpacingWide = 100.0;
constexpr double kSpacingNarrow = 5000.0;

RainbowSliderCurve curve;

} // namespace

void RainbowSliderCurve::SetUp(double exponent, double p0, double v0, double p1, double v1)
{
    k = exponent;
    a = (v0 - v1) / (std::pow(p0, k) - std::pow(p1, k));
    b = v0 - std::pow(p0, k) * a;
}

float RainbowSliderCurve::Spacing(int position) const
{
    return static_cast<float>(a * std::pow(static_cast<double>(position), k) + b);
}

int RainbowSliderCurve::Position(float spacing) const
{
    const double base = (static_cast<double>(spacing) - b) / a;
    // A spacing below the curve's start has no real root (and NaN none at
    // all): it shows at the left end.
    if (!(base >= 0.0))
        return 0;
    return FZTruncate(std::pow(base, 1.0 / k));
}

const RainbowSliderCurve& RainbowCurve()
{
    return curve;
}

CDlgRainbowHighlight::CDlgRainbowHighlight(QWidget* parent)
    : CParameterDialog(RainbowDialogTemplate(), rainbow_id::kPreviousShape,
                       rainbow_id::kNextShape, parent),
      spacing(controls.Get<QScrollBar>(rainbow_id::kSpacing))
{
    curve.SetUp(2.0, 0.0, kSpacingWide, kSliderMax, kSpacingNarrow);
    ConnectHScroll(spacing, [this](QScrollBar*, int) { OnHScroll(); });
    AttachValueTip(spacing, [](int position) {
        return ValueTipText(QT_TRANSLATE_NOOP("Tamerisk", "縞模様の間隔"), curve.Spacing(position));
    });
}

void CDlgRainbowHighlight::OnInitDialog()
{
    SetScrollBar(spacing, kSliderMax, curve.Position(record.stripeSpacing));
    SetUpPreview();
}

void CDlgRainbowHighlight::OnHScroll()
{
    // The value follows the position the slider shows, so a step beyond
    // either end gives the end's value.
    record.stripeSpacing = curve.Spacing(spacing->value());
    Refresh();
}
