// CDlgAnisotropic: the modal dialog "異方性反射" (template 4022) that edits the
// groove pattern of a material: its type, its parameters and its centre.
// Beside the controls it shows a line diagram of the pattern (control 4038)
// in which a click or a drag places the pattern's centre, and the material on
// a sample shape. See dlg_parameter.h for how a caller runs it.
//
// The controls are the truth while the dialog runs: every refresh reads them
// back into the record (ReadControls), so a record value between two steps
// of its control becomes the step below it when the dialog opens.
#ifndef TAMERISK_DIALOGS_DLG_ANISOTROPIC_H
#define TAMERISK_DIALOGS_DLG_ANISOTROPIC_H

#include <array>
#include <optional>
#include <vector>

#include <QPoint>

#include "dialogs/dlg_parameter.h"

class QRadioButton;
class QSpinBox;

class CDlgAnisotropic : public CParameterDialog {
    Q_OBJECT

public:
    explicit CDlgAnisotropic(QWidget* parent = nullptr);

protected:
    void OnInitDialog() override;
    // Reads the controls, then draws the diagram and the preview. Nothing
    // happens before the initialisation has finished.
    void Refresh() override;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void ConnectHandlers();
    void SetControls();
    // Controls to record: the type, and the parameters of that type.
    void ReadControls();
    void EnableByType();
    void DrawPattern();
    // The point (dialog coordinates) relative to the diagram, when it lies
    // on the diagram, its right and bottom edge lines included.
    std::optional<QPoint> HitDiagram(const QPoint& point) const;
    void SetCenterFromPoint(const QPoint& diagramPoint);

    void OnRadioType();
    void OnHScroll();
    void OnEditChange();
    void OnLButtonDown(const QPoint& point);
    void OnMouseMove(const QPoint& point);
    void OnLButtonUp(const QPoint& point);

    std::array<QRadioButton*, 5> typeButtons{};  // types 1 to 5
    QScrollBar* depth;
    QScrollBar* amplitude;
    QScrollBar* twist;
    QScrollBar* straightAngle;
    QScrollBar* waveAmplitude;
    QScrollBar* waveAngle;
    QSpinBox* waveCount;
    QSpinBox* grooveWidth;
    FZCanvas* diagram;
    std::array<std::vector<QWidget*>, 4> typeControls;  // of types 2 to 5

    bool dragging = false;
    bool ready = false;
};

#endif
