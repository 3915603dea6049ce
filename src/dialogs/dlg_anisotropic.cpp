#include "dialogs/dlg_anisotropic.h"

#include <array>

#include <QLineEdit>
#include <QMouseEvent>
#include <QRadioButton>
#include <QScrollBar>

#include "dialogs/anisotropy_diagram.h"
#include "dialogs/dialog_template.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "engine/fz_math.h"

namespace {

enum : int {
    kIdConcentric = 4019,
    kIdWavyConcentric = 4021,
    kIdSpiral = 4022,
    kIdStraight = 4032,
    kIdWave = 4033,
    kIdWaveCountLabel = 4025,
    kIdWaveCountEdit = 1027,
    kIdWaveCountSpin = 1028,
    kIdAmplitudeLabel = 4026,
    kIdAmplitude = 4024,
    kIdTwistLabel = 4028,
    kIdTwist = 4027,
    kIdDepth = 4031,
    kIdDiagram = 4038,
    kIdPreviousShape = 4030,
    kIdNextShape = 4029,
    kIdStraightAngleLabel = 4036,
    kIdStraightAngle = 4035,
    kIdWaveAmplitudeLabel = 4039,
    kIdWaveAmplitude = 4034,
    kIdWaveAngleLabel = 4040,
    kIdWaveAngle = 4037,
    kIdGrooveWidthEdit = 1029,
    kIdGrooveWidthSpin = 1030,
};

struct TypeButton {
    int id;
    int type;
};

// In this order: when several were checked, the later one would win.
constexpr std::array<TypeButton, 5> kTypeButtons{{
    {kIdConcentric, 1},
    {kIdWavyConcentric, 2},
    {kIdSpiral, 3},
    {kIdStraight, 4},
    {kIdWave, 5},
}};

struct Range {
    int id;
    int minimum;
    int maximum;
};

// Set up in this order by the initialisation; spins have a range from 1.
constexpr std::array<Range, 8> kRanges{{
    {kIdDepth, 0, 20},
    {kIdGrooveWidthSpin, 1, 10},
    {kIdAmplitude, 0, 20},
    {kIdTwist, 0, 32},
    {kIdWaveCountSpin, 1, 36},
    {kIdStraightAngle, 0, 60},
    {kIdWaveAmplitude, 0, 20},
    {kIdWaveAngle, 0, 60},
}};

constexpr int kScrollBars[] = {kIdDepth,         kIdAmplitude,     kIdTwist,
                               kIdStraightAngle, kIdWaveAmplitude, kIdWaveAngle};

// The controls of each type's parameters; depth and groove width serve all.
constexpr int kControlsOfType2[] = {kIdWaveCountLabel, kIdWaveCountEdit, kIdWaveCountSpin,
                                    kIdAmplitudeLabel, kIdAmplitude};
constexpr int kControlsOfType3[] = {kIdTwistLabel, kIdTwist};
constexpr int kControlsOfType4[] = {kIdStraightAngleLabel, kIdStraightAngle};
constexpr int kControlsOfType5[] = {kIdWaveAmplitudeLabel, kIdWaveAmplitude,
                                    kIdWaveAngleLabel, kIdWaveAngle};

constexpr double kTwistHalfRange = 0.05;  // the spiral turns by -0.05 to +0.05

// Position of a bar from a value: trunc(value), held by the bar in its range.
void SetPosition(QScrollBar* bar, double value)
{
    if (bar != nullptr)
        bar->setValue(FZTruncate(value));
}

double Maximum(const QScrollBar* bar)
{
    return bar == nullptr ? 0.0 : static_cast<double>(bar->maximum());
}

} // namespace

CDlgAnisotropic::CDlgAnisotropic(QWidget* parent)
    : CParameterDialog(AnisotropicDialogTemplate(), kIdPreviousShape, kIdNextShape, parent)
{
    // The diagram only shows; presses, moves and releases over it belong to
    // the dialog, which places the centre.
    if (QWidget* diagram = GetDlgItem(this, kIdDiagram))
        diagram->setAttribute(Qt::WA_TransparentForMouseEvents);
    ConnectHandlers();
}

void CDlgAnisotropic::ConnectHandlers()
{
    for (const TypeButton& button : kTypeButtons) {
        if (auto* radio = DlgItem<QRadioButton>(this, button.id))
            connect(radio, &QRadioButton::clicked, this, &CDlgAnisotropic::OnRadioType);
    }
    for (int id : kScrollBars)
        ConnectHScroll(DlgItem<QScrollBar>(this, id), [this](QScrollBar*, int) { OnHScroll(); });
    for (int id : {kIdWaveCountEdit, kIdGrooveWidthEdit}) {
        if (auto* edit = DlgItem<QLineEdit>(this, id))
            connect(edit, &QLineEdit::textChanged, this, &CDlgAnisotropic::OnEditChange);
    }
}

void CDlgAnisotropic::OnInitDialog()
{
    ready = false;
    for (const Range& range : kRanges) {
        if (auto* bar = DlgItem<QScrollBar>(this, range.id))
            bar->setRange(range.minimum, range.maximum);
        else if (auto* spin = DlgItem<CSpinButton>(this, range.id))
            spin->SetRange(range.minimum, range.maximum);
    }
    // The spins write their positions into the edits here; those text
    // changes arrive while ready is still false and draw nothing.
    SetControls();
    SetUpPreview();
    ready = true;
}

void CDlgAnisotropic::SetControls()
{
    const FZAnisotropy& a = record.anisotropy;
    for (const TypeButton& button : kTypeButtons)
        CheckDlgButton(this, button.id, false);
    for (const TypeButton& button : kTypeButtons) {
        if (button.type == a.type)
            CheckDlgButton(this, button.id, true);
    }
    EnableByType();

    auto* depth = DlgItem<QScrollBar>(this, kIdDepth);
    SetPosition(depth, Maximum(depth) * a.depthVariation);
    if (auto* width = DlgItem<CSpinButton>(this, kIdGrooveWidthSpin))
        width->SetPos(FZTruncate(static_cast<double>(a.grooveWidth) * 2.0 + 0.01));

    auto* amplitude = DlgItem<QScrollBar>(this, kIdAmplitude);
    SetPosition(amplitude, Maximum(amplitude) * a.amplitude * 4.0);
    if (auto* waves = DlgItem<CSpinButton>(this, kIdWaveCountSpin))
        waves->SetPos(a.waveCount);

    auto* twist = DlgItem<QScrollBar>(this, kIdTwist);
    SetPosition(twist, Maximum(twist) * (a.spiralTwist + kTwistHalfRange) / 0.1);

    auto* straightAngle = DlgItem<QScrollBar>(this, kIdStraightAngle);
    SetPosition(straightAngle, Maximum(straightAngle) * a.angle / 180.0);

    auto* waveAmplitude = DlgItem<QScrollBar>(this, kIdWaveAmplitude);
    SetPosition(waveAmplitude, Maximum(waveAmplitude) * a.amplitude * 4.0);
    auto* waveAngle = DlgItem<QScrollBar>(this, kIdWaveAngle);
    SetPosition(waveAngle, Maximum(waveAngle) * a.angle / 180.0);
}

bool CDlgAnisotropic::ReadControls()
{
    FZAnisotropy& a = record.anisotropy;
    a.type = -1;
    for (const TypeButton& button : kTypeButtons) {
        if (IsDlgButtonChecked(this, button.id))
            a.type = button.type;
    }

    const auto* depth = DlgItem<QScrollBar>(this, kIdDepth);
    if (depth == nullptr)
        return false;
    a.depthVariation = static_cast<float>(depth->value() / Maximum(depth));

    const auto* width = DlgItem<CSpinButton>(this, kIdGrooveWidthSpin);
    if (width == nullptr)
        return false;
    a.grooveWidth = static_cast<float>(width->Pos() * 0.5);

    switch (a.type) {
    case 2: {
        const auto* waves = DlgItem<CSpinButton>(this, kIdWaveCountSpin);
        const auto* amplitude = DlgItem<QScrollBar>(this, kIdAmplitude);
        if (waves == nullptr || amplitude == nullptr)
            return false;
        a.waveCount = FZMax(waves->Pos(), 1);
        a.amplitude = static_cast<float>(amplitude->value() / Maximum(amplitude) / 4.0);
        break;
    }
    case 3: {
        const auto* twist = DlgItem<QScrollBar>(this, kIdTwist);
        if (twist == nullptr)
            return false;
        a.spiralTwist = static_cast<float>(2.0 * twist->value() * kTwistHalfRange / Maximum(twist)
                                           - kTwistHalfRange);
        break;
    }
    case 4: {
        const auto* angle = DlgItem<QScrollBar>(this, kIdStraightAngle);
        if (angle == nullptr)
            return false;
        a.angle = static_cast<float>(angle->value() / Maximum(angle) * 180.0);
        break;
    }
    case 5: {
        const auto* amplitude = DlgItem<QScrollBar>(this, kIdWaveAmplitude);
        const auto* angle = DlgItem<QScrollBar>(this, kIdWaveAngle);
        if (amplitude == nullptr || angle == nullptr)
            return false;
        a.amplitude = static_cast<float>(amplitude->value() / Maximum(amplitude) / 4.0);
        a.angle = static_cast<float>(angle->value() / Maximum(angle) * 180.0);
        break;
    }
    default:
        break;
    }
    return true;
}

void CDlgAnisotropic::EnableByType()
{
    auto enable = [this](const auto& ids, bool on) {
        for (int id : ids)
            EnableDlgItem(this, id, on);
    };
    enable(kControlsOfType2, record.anisotropy.type == 2);
    enable(kControlsOfType3, record.anisotropy.type == 3);
    enable(kControlsOfType4, record.anisotropy.type == 4);
    enable(kControlsOfType5, record.anisotropy.type == 5);
}

void CDlgAnisotropic::Refresh()
{
    if (!ready)
        return;
    DrawPattern();
    CParameterDialog::Refresh();
}

void CDlgAnisotropic::DrawPattern()
{
    auto* diagram = DlgItem<FZCanvas>(this, kIdDiagram);
    if (diagram == nullptr || !ReadControls())
        return;
    const QImage picture = DrawAnisotropyPattern(record.anisotropy, diagram->width(),
                                                 diagram->height());
    diagram->Blit(picture, picture.rect(), QPoint(0, 0));
}

std::optional<QPoint> CDlgAnisotropic::HitDiagram(const QPoint& point) const
{
    const QWidget* diagram = GetDlgItem(this, kIdDiagram);
    if (diagram == nullptr)
        return std::nullopt;
    const QPoint local = mapToGlobal(point) - diagram->mapToGlobal(QPoint(0, 0));
    if (local.x() < 0 || local.x() > diagram->width() || local.y() < 0
        || local.y() > diagram->height())
        return std::nullopt;
    return local;
}

void CDlgAnisotropic::SetCenterFromPoint(const QPoint& diagramPoint)
{
    const QWidget* diagram = GetDlgItem(this, kIdDiagram);
    // A diagram without area has no place to put the centre.
    if (diagram == nullptr || diagram->width() < 1 || diagram->height() < 1)
        return;
    float* center = record.anisotropy.center;
    center[0] = static_cast<float>(static_cast<double>(diagramPoint.x()) / diagram->width());
    center[1] = static_cast<float>(1.0 - static_cast<double>(diagramPoint.y()) / diagram->height());
    center[2] = 0.0f;
}

void CDlgAnisotropic::OnRadioType()
{
    Refresh();
    EnableByType();
}

void CDlgAnisotropic::OnHScroll()
{
    // The bar already shows its new position, held in its range; the
    // refresh reads it from there.
    Refresh();
}

void CDlgAnisotropic::OnEditChange()
{
    Refresh();
}

void CDlgAnisotropic::OnLButtonDown(const QPoint& point)
{
    const int type = record.anisotropy.type;
    if (type < 1 || type > 3)
        return;  // the straight and wave patterns have no centre to place
    if (const std::optional<QPoint> hit = HitDiagram(point)) {
        SetCenterFromPoint(*hit);
        dragging = true;
        Refresh();
    }
}

void CDlgAnisotropic::OnMouseMove(const QPoint& point)
{
    if (!dragging)
        return;
    if (const std::optional<QPoint> hit = HitDiagram(point)) {
        SetCenterFromPoint(*hit);
        Refresh();
    }
}

void CDlgAnisotropic::OnLButtonUp(const QPoint& point)
{
    if (dragging) {
        if (const std::optional<QPoint> hit = HitDiagram(point)) {
            SetCenterFromPoint(*hit);
            Refresh();
        }
    }
    dragging = false;
}

void CDlgAnisotropic::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        OnLButtonDown(event->position().toPoint());
    CParameterDialog::mousePressEvent(event);
}

void CDlgAnisotropic::mouseMoveEvent(QMouseEvent* event)
{
    // A move without the button is a drag whose release went elsewhere.
    if (!(event->buttons() & Qt::LeftButton))
        dragging = false;
    OnMouseMove(event->position().toPoint());
    CParameterDialog::mouseMoveEvent(event);
}

void CDlgAnisotropic::mouseReleaseEvent(QMouseEvent* event)
{
    // The dialog took the press, so Qt hands it the release wherever the
    // button comes up: over the dialog, or anywhere else on the screen.
    if (event->button() == Qt::LeftButton)
        OnLButtonUp(event->position().toPoint());
    CParameterDialog::mouseReleaseEvent(event);
}

bool CDlgAnisotropic::event(QEvent* event)
{
    // Another window taking the mouse or the focus ends a drag: its release
    // will never come here.
    const QEvent::Type type = event->type();
    if (type == QEvent::WindowDeactivate || type == QEvent::UngrabMouse || type == QEvent::Hide)
        dragging = false;
    return CParameterDialog::event(event);
}
