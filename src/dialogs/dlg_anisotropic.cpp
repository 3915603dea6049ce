#include "dialogs/dlg_anisotropic.h"

#include <array>

#include <QMouseEvent>
#include <QRadioButton>
#include <QScrollBar>
#include <QSpinBox>

#include "dialogs/anisotropy_diagram.h"
#include "dialogs/slider_value_tip.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "engine/fz_math.h"

namespace {

namespace id = anisotropic_id;

// The type buttons in the order of their types 1 to 5: when several were
// checked, the later one would win.
constexpr std::array<int, 5> kTypeButtons{id::kConcentric, id::kWavyConcentric, id::kSpiral,
                                          id::kStraight, id::kWave};

// The controls of each type's parameters (types 2 to 5); depth and groove
// width serve all.
constexpr int kControlsOfType2[] = {id::kWaveCountLabel, id::kWaveCount, id::kAmplitudeLabel,
                                    id::kAmplitude};
constexpr int kControlsOfType3[] = {id::kTwistLabel, id::kTwist};
constexpr int kControlsOfType4[] = {id::kStraightAngleLabel, id::kStraightAngle};
constexpr int kControlsOfType5[] = {id::kWaveAmplitudeLabel, id::kWaveAmplitude,
                                    id::kWaveAngleLabel, id::kWaveAngle};

constexpr double kTwistHalfRange = 0.05;  // the spiral turns by -0.05 to +0.05

// Position of a bar from a value: trunc(value), held by the bar in its range.
void SetPosition(QScrollBar* bar, double value)
{
    bar->setValue(FZTruncate(value));
}

double Maximum(const QScrollBar* bar)
{
    return static_cast<double>(bar->maximum());
}

// The bar's position over its maximum.
double Fraction(const QScrollBar* bar)
{
    return bar->value() / Maximum(bar);
}

// What the bars write: the amplitude (types 2 and 5) and the spiral twist.
double AmplitudeOf(const QScrollBar* bar)
{
    return Fraction(bar) / 4.0;
}

double TwistOf(const QScrollBar* bar)
{
    return 2.0 * bar->value() * kTwistHalfRange / Maximum(bar) - kTwistHalfRange;
}

template <std::size_t N>
std::vector<QWidget*> Resolve(const DialogControls& built, const int (&ids)[N])
{
    std::vector<QWidget*> widgets;
    for (int control : ids)
        widgets.push_back(built.Get<QWidget>(control));
    return widgets;
}

} // namespace

CDlgAnisotropic::CDlgAnisotropic(QWidget* parent)
    : CParameterDialog(AnisotropicDialogTemplate(), id::kPreviousShape, id::kNextShape, parent),
      depth(controls.Get<QScrollBar>(id::kDepth)),
      amplitude(controls.Get<QScrollBar>(id::kAmplitude)),
      twist(controls.Get<QScrollBar>(id::kTwist)),
      straightAngle(controls.Get<QScrollBar>(id::kStraightAngle)),
      waveAmplitude(controls.Get<QScrollBar>(id::kWaveAmplitude)),
      waveAngle(controls.Get<QScrollBar>(id::kWaveAngle)),
      waveCount(controls.Get<QSpinBox>(id::kWaveCount)),
      grooveWidth(controls.Get<QSpinBox>(id::kGrooveWidth)),
      diagram(controls.Get<FZCanvas>(id::kDiagram)),
      typeControls{Resolve(controls, kControlsOfType2), Resolve(controls, kControlsOfType3),
                   Resolve(controls, kControlsOfType4), Resolve(controls, kControlsOfType5)}
{
    for (std::size_t i = 0; i < kTypeButtons.size(); ++i)
        typeButtons[i] = controls.Get<QRadioButton>(kTypeButtons[i]);
    depth->setRange(0, 20);
    grooveWidth->setRange(1, 10);
    amplitude->setRange(0, 20);
    twist->setRange(0, 32);
    waveCount->setRange(1, 36);
    straightAngle->setRange(0, 60);
    waveAmplitude->setRange(0, 20);
    waveAngle->setRange(0, 60);
    // The diagram only shows; presses, moves and releases over it belong to
    // the dialog, which places the centre.
    diagram->setAttribute(Qt::WA_TransparentForMouseEvents);
    ConnectHandlers();
}

void CDlgAnisotropic::ConnectHandlers()
{
    for (QRadioButton* radio : typeButtons)
        connect(radio, &QRadioButton::clicked, this, &CDlgAnisotropic::OnRadioType);
    for (QScrollBar* bar : {depth, amplitude, twist, straightAngle, waveAmplitude, waveAngle})
        ConnectHScroll(bar, [this](QScrollBar*, int) { OnHScroll(); });
    for (QSpinBox* spin : {waveCount, grooveWidth})
        connect(spin, &QSpinBox::valueChanged, this, &CDlgAnisotropic::OnEditChange);
    AttachValueTip(depth, [this](int) { return ValueTipText(QT_TRANSLATE_NOOP("Tamerisk", "溝の深さ"), Fraction(depth)); });
    AttachValueTip(amplitude,
                   [this](int) { return ValueTipText(QT_TRANSLATE_NOOP("Tamerisk", "振幅"), AmplitudeOf(amplitude), 4); });
    AttachValueTip(twist,
                   [this](int) { return ValueTipText(QT_TRANSLATE_NOOP("Tamerisk", "渦巻きの回転角"), TwistOf(twist), 6); });
}

void CDlgAnisotropic::OnInitDialog()
{
    ready = false;
    // The spin boxes change value here; those changes arrive while ready is
    // still false and draw nothing.
    SetControls();
    SetUpPreview();
    ready = true;
    Refresh();
}

void CDlgAnisotropic::SetControls()
{
    const FZAnisotropy& a = record.anisotropy;
    for (QRadioButton* radio : typeButtons)
        SetButtonChecked(radio, false);
    for (std::size_t i = 0; i < typeButtons.size(); ++i) {
        if (static_cast<int>(i) + 1 == a.type)
            SetButtonChecked(typeButtons[i], true);
    }
    EnableByType();

    SetPosition(depth, Maximum(depth) * a.depthVariation);
    grooveWidth->setValue(FZTruncate(static_cast<double>(a.grooveWidth) * 2.0 + 0.01));
    SetPosition(amplitude, Maximum(amplitude) * a.amplitude * 4.0);
    waveCount->setValue(a.waveCount);
    SetPosition(twist, Maximum(twist) * (a.spiralTwist + kTwistHalfRange) / 0.1);
    SetPosition(straightAngle, Maximum(straightAngle) * a.angle / 180.0);
    SetPosition(waveAmplitude, Maximum(waveAmplitude) * a.amplitude * 4.0);
    SetPosition(waveAngle, Maximum(waveAngle) * a.angle / 180.0);
}

void CDlgAnisotropic::ReadControls()
{
    FZAnisotropy& a = record.anisotropy;
    a.type = -1;
    for (std::size_t i = 0; i < typeButtons.size(); ++i) {
        if (typeButtons[i]->isChecked())
            a.type = static_cast<int>(i) + 1;
    }
    a.depthVariation = static_cast<float>(Fraction(depth));
    a.grooveWidth = static_cast<float>(grooveWidth->value() * 0.5);

    switch (a.type) {
    case 2:
        a.waveCount = FZMax(waveCount->value(), 1);
        a.amplitude = static_cast<float>(AmplitudeOf(amplitude));
        break;
    case 3:
        a.spiralTwist = static_cast<float>(TwistOf(twist));
        break;
    case 4:
        a.angle = static_cast<float>(Fraction(straightAngle) * 180.0);
        break;
    case 5:
        a.amplitude = static_cast<float>(AmplitudeOf(waveAmplitude));
        a.angle = static_cast<float>(Fraction(waveAngle) * 180.0);
        break;
    default:
        break;
    }
}

void CDlgAnisotropic::EnableByType()
{
    for (std::size_t i = 0; i < typeControls.size(); ++i) {
        const bool on = record.anisotropy.type == static_cast<int>(i) + 2;
        for (QWidget* control : typeControls[i])
            control->setEnabled(on);
    }
}

void CDlgAnisotropic::Refresh()
{
    if (!ready)
        return;
    ReadControls();
    DrawPattern();
    CParameterDialog::Refresh();
}

void CDlgAnisotropic::DrawPattern()
{
    // Drawn at the screen's pixel density, so the lines stay sharp.
    const qreal ratio = diagram->devicePixelRatioF();
    const QImage picture = DrawAnisotropyPattern(record.anisotropy,
                                                 qRound(diagram->width() * ratio),
                                                 qRound(diagram->height() * ratio));
    diagram->Blit(picture, picture.rect(), QPoint(0, 0));
}

std::optional<QPoint> CDlgAnisotropic::HitDiagram(const QPoint& point) const
{
    const QPoint local = mapToGlobal(point) - diagram->mapToGlobal(QPoint(0, 0));
    if (local.x() < 0 || local.x() > diagram->width() || local.y() < 0
        || local.y() > diagram->height())
        return std::nullopt;
    return local;
}

void CDlgAnisotropic::SetCenterFromPoint(const QPoint& diagramPoint)
{
    // A diagram without area has no place to put the centre.
    if (diagram->width() < 1 || diagram->height() < 1)
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
