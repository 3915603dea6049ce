// CDlgTransparency: the modal dialog "透明度" (template 4027) that sets how
// much a transparent material's transparency depends on the angle of
// incidence ("入射角依存率") and how much light it absorbs ("減衰率"). It
// also carries the thin-glass check box and its thickness spin, which the
// template keeps hidden. See dlg_parameter.h for how a caller runs it.
#ifndef TAMERISK_DIALOGS_DLG_TRANSPARENCY_H
#define TAMERISK_DIALOGS_DLG_TRANSPARENCY_H

#include "dialogs/dlg_parameter.h"

class QCheckBox;
class QSpinBox;

class CDlgTransparency : public CParameterDialog {
    Q_OBJECT

public:
    explicit CDlgTransparency(QWidget* parent = nullptr);

protected:
    void OnInitDialog() override;

private:
    void ConnectHandlers();
    static float SliderValue(const QScrollBar* bar);
    void OnCheckThinGlass();
    void OnThicknessChanged(int value);

    QScrollBar* incidence;
    QScrollBar* attenuation;
    QCheckBox* thinGlass;
    QSpinBox* thickness;
};

#endif
