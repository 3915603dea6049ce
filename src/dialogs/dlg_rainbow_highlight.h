// CDlgRainbowHighlight: the modal dialog "虹色光沢" (template 4026) that sets
// the stripe spacing of the rainbow gloss with one slider between "広い"
// (wide) and "狭い" (narrow). See dlg_parameter.h for how a caller runs it.
#ifndef TAMERISK_DIALOGS_DLG_RAINBOW_HIGHLIGHT_H
#define TAMERISK_DIALOGS_DLG_RAINBOW_HIGHLIGHT_H

#include "dialogs/dlg_parameter.h"

// The slider curve: a position p of 0 to 20 gives the stripe spacing
// a * p^k + b, 100 at the left end and 5000 at the right, growing with the
// square of the position. There is one curve for the whole library; every
// construction of the dialog sets it up again.
struct RainbowSliderCurve {
    double k = 0.0;
    double a = 0.0;
    double b = 0.0;

    // Makes the curve pass through (p0, v0) and (p1, v1) with exponent k.
    void SetUp(double exponent, double p0, double v0, double p1, double v1);
    float Spacing(int position) const;
    // The position that shows a spacing, truncated; NaN, spacings below the
    // curve's start and anything else without a real root give 0. Not held
    // in the slider's range (the slider does that).
    int Position(float spacing) const;
};

const RainbowSliderCurve& RainbowCurve();

class CDlgRainbowHighlight : public CParameterDialog {
    Q_OBJECT

public:
    explicit CDlgRainbowHighlight(QWidget* parent = nullptr);

protected:
    void OnInitDialog() override;

private:
    void OnHScroll();

    QScrollBar* spacing;
};

#endif
