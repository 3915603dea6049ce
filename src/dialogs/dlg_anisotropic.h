// CDlgAnisotropic: the modal dialog "異方性反射" (template 4022) that edits the
// groove pattern of a material: its type, its parameters and its centre.
// Beside the controls it shows a line diagram of the pattern (control 4038)
// in which a click or a drag places the pattern's centre, and the material on
// a sample shape. See dlg_parameter.h for how a caller runs it.
//
// The controls are the truth while the dialog runs: every refresh reads them
// back into the record (ReadControls), so a record value between two steps
// of its control becomes the step below it at the first paint.
#ifndef TAMERISK_DIALOGS_DLG_ANISOTROPIC_H
#define TAMERISK_DIALOGS_DLG_ANISOTROPIC_H

#include <optional>

#include <QPoint>

#include "dialogs/dlg_parameter.h"

class CDlgAnisotropic : public CParameterDialog {
    Q_OBJECT

public:
    explicit CDlgAnisotropic(QWidget* parent = nullptr);

protected:
    void OnInitDialog() override;
    // Draws the diagram (reading the controls first), then the preview.
    // Nothing happens before the initialisation has finished.
    void Refresh() override;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

private:
    void ConnectHandlers();
    void SetControls();
    // Controls to record; false as soon as a control it needs is missing
    // (what was read until then stays in the record).
    bool ReadControls();
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

    bool dragging = false;
    bool ready = false;
};

#endif
