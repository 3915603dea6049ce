#include "dialogs/dialog_template.h"

#include <cstdint>
#include <cstdlib>

#include <QAbstractSlider>
#include <QCheckBox>
#include <QDialog>
#include <QFontMetrics>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QProxyStyle>
#include <QRadioButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QStyleOptionSlider>

#include "dialogs/language.h"
#include "dialogs/resources.h"
#include "engine/display/canvas.h"

int MulDiv(int a, int b, int c)
{
    if (c == 0)
        return -1;
    const std::int64_t product = std::int64_t{a} * b;
    const std::int64_t half = std::llabs(c) / 2;
    const bool negative = (product < 0) != (c < 0);
    const std::int64_t magnitude = (std::llabs(product) + half) / std::llabs(c);
    return static_cast<int>(negative ? -magnitude : magnitude);
}

namespace {

struct FaceFallback {
    const char* windowsFace;
    const char* freeFace;
};

// The Windows faces the dialogs ask for and the IPA faces drawn alike.
constexpr FaceFallback kFaceFallbacks[] = {
    {"ＭＳ Ｐゴシック", "IPAPGothic"},
    {"ＭＳ ゴシック", "IPAGothic"},
};

// Windows creates a template's font for a 96 dpi screen.
constexpr int kScreenDpi = 96;

} // namespace

QFont JapaneseFont(const char* face, int pixelHeight)
{
    QStringList families{QString::fromUtf8(face)};
    for (const FaceFallback& fallback : kFaceFallbacks) {
        if (families.front() == QString::fromUtf8(fallback.windowsFace))
            families.append(QString::fromLatin1(fallback.freeFace));
    }
    QFont font;
    font.setFamilies(families);
    font.setPixelSize(pixelHeight < 1 ? 1 : pixelHeight);
    font.setWeight(QFont::Normal);
    return font;
}

QFont DialogFont(const char* face, int pointSize)
{
    return JapaneseFont(face, MulDiv(pointSize, kScreenDpi, 72));
}

DialogBaseUnits DialogBaseUnits::FromFont(const QFont& font)
{
    const QFontMetrics metrics(font);
    const int letters = metrics.horizontalAdvance(
        QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"));
    // Windows rounds the 52-letter width to the nearest whole average.
    return DialogBaseUnits{(letters / 26 + 1) / 2, metrics.height()};
}

namespace {

// Scroll bars used as sliders get a small square thumb, as on Windows,
// instead of the long handle Qt gives a short range. The thumb carries an
// edge in the text colour, which stands out from the groove on any palette,
// and a bar with the keyboard focus shows the style's focus frame.
class SliderBarStyle : public QProxyStyle {
public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        if (metric == PM_ScrollBarSliderMin && widget != nullptr)
            return widget->height();
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override
    {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || bar == nullptr)
            return;
        const QRect thumb = subControlRect(control, bar, SC_ScrollBarSlider, widget);
        if (!thumb.isEmpty()) {
            painter->save();
            painter->setPen(option->palette.color(QPalette::WindowText));
            painter->setBrush(Qt::NoBrush);
            painter->drawRect(thumb.adjusted(0, 0, -1, -1));
            painter->restore();
        }
        if (option->state & State_HasFocus) {
            QStyleOptionFocusRect focus;
            focus.QStyleOption::operator=(*option);
            focus.rect = option->rect;
            drawPrimitive(PE_FrameFocusRect, &focus, painter, widget);
        }
    }
};

// One style for the bars of a dialog, owned by the dialog: a style owned by
// the application would outlive a library that the host unloads, and the
// application would then destroy an object whose code is gone.
QStyle* SliderStyle(QWidget* dialog)
{
    auto* style = dialog->findChild<SliderBarStyle*>(QString(), Qt::FindDirectChildrenOnly);
    if (style == nullptr) {
        style = new SliderBarStyle;
        style->setParent(dialog);
    }
    return style;
}

QString Text(const ControlTemplate& c)
{
    return c.text == nullptr ? QString() : UiText(c.text);
}

QWidget* MakeBitmap(QWidget* parent, const ControlTemplate& c)
{
    auto* label = new QLabel(parent);
    // Through QIcon, which also finds the "@2x" picture beside the plain
    // one, so a high-density screen gets a sharp bitmap.
    const QIcon icon(QStringLiteral(":/bitmaps/%1.png").arg(c.extra));
    const QList<QSize> sizes = icon.availableSizes();
    if (sizes.isEmpty())
        return label;
    const QPixmap picture = icon.pixmap(sizes.front(), parent->devicePixelRatioF());
    label->setPixmap(picture);
    label->setFixedSize(sizes.front());
    return label;
}

QWidget* MakeControl(QWidget* parent, const ControlTemplate& c)
{
    switch (c.kind) {
    case ControlKind::PushButton:
        return new QPushButton(Text(c), parent);
    case ControlKind::DefaultPushButton: {
        auto* button = new QPushButton(Text(c), parent);
        button->setDefault(true);
        return button;
    }
    case ControlKind::OwnerDrawnButton: {
        auto* button = new COwnerDrawButton(parent);
        button->setText(Text(c));
        return button;
    }
    case ControlKind::AutoCheckBox:
        return new QCheckBox(Text(c), parent);
    case ControlKind::AutoRadioButton:
        return new QRadioButton(Text(c), parent);
    case ControlKind::GroupBox:
        return new CGroupBox(Text(c), parent);
    case ControlKind::Label: {
        auto* label = new QLabel(Text(c), parent);
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        return label;
    }
    case ControlKind::StaticBitmap:
        return MakeBitmap(parent, c);
    case ControlKind::StaticFrame:
        return new FZCanvas(parent);
    case ControlKind::HScrollBar: {
        auto* bar = new QScrollBar(Qt::Horizontal, parent);
        bar->setRange(0, 100);
        bar->setSingleStep(1);
        bar->setPageStep(2);
        // Qt inverts a scroll bar's keys by default; these are sliders, so
        // the right arrow moves right, as on Windows.
        bar->setInvertedControls(false);
        bar->setStyle(SliderStyle(parent));
        // Qt's scroll bars take no focus; these are the dialogs' sliders and
        // Tab must reach them.
        bar->setFocusPolicy(Qt::StrongFocus);
        return bar;
    }
    case ControlKind::SpinBox:
        return new QSpinBox(parent);
    }
    return nullptr;
}

void PlaceControl(QWidget* widget, const ControlTemplate& c, const DialogBaseUnits& units)
{
    const QRect r = units.ToPixels(c.x, c.y, c.w, c.h);
    if (c.kind == ControlKind::StaticBitmap)
        widget->move(r.topLeft());  // a bitmap control takes its picture's size
    else
        widget->setGeometry(r);
}

} // namespace

DialogControls BuildDialog(QDialog& dialog, const DialogTemplate& t)
{
    TameriskRegisterResources();
    const QFont font = DialogFont(t.fontFace, t.pointSize);
    DialogControls built;
    built.units = DialogBaseUnits::FromFont(font);
    const DialogBaseUnits& units = built.units;

    dialog.setObjectName(QString::number(t.id));
    dialog.setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint
                          | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    dialog.setFont(font);
    dialog.setWindowTitle(UiText(t.caption));
    dialog.setFixedSize(units.X(t.w), units.Y(t.h));

    for (const ControlTemplate& c : t.controls) {
        QWidget* widget = MakeControl(&dialog, c);
        if (widget == nullptr)
            continue;
        if (c.id != kNoId) {
            widget->setObjectName(QString::number(c.id));
            built.Add(c.id, widget);
        }
        PlaceControl(widget, c, units);
        if (c.style & kStyleDisabled)
            widget->setEnabled(false);
        if (c.style & kStyleHidden)
            widget->setVisible(false);
    }
    return built;
}

QWidget* GetDlgItem(const QWidget* dialog, int id)
{
    if (dialog == nullptr)
        return nullptr;
    return dialog->findChild<QWidget*>(QString::number(id), Qt::FindDirectChildrenOnly);
}

void SetButtonChecked(QWidget* button, bool checked)
{
    auto* b = qobject_cast<QAbstractButton*>(button);
    if (b == nullptr)
        return;
    // An exclusive radio button refuses to be cleared; lift that for a moment.
    const bool exclusive = b->autoExclusive();
    if (!checked && exclusive)
        b->setAutoExclusive(false);
    b->setChecked(checked);
    if (!checked && exclusive)
        b->setAutoExclusive(true);
}

int ScrollPositionAfter(int action, int position, int thumb)
{
    switch (action) {
    case QAbstractSlider::SliderSingleStepSub:
        return position - 1;
    case QAbstractSlider::SliderSingleStepAdd:
        return position + 1;
    case QAbstractSlider::SliderPageStepSub:
        return position - 2;
    case QAbstractSlider::SliderPageStepAdd:
        return position + 2;
    case QAbstractSlider::SliderMove:
        return thumb;
    default:
        return position;
    }
}

void ConnectHScroll(QScrollBar* bar, std::function<void(QScrollBar*, int)> handler)
{
    if (bar == nullptr)
        return;
    QObject::connect(bar, &QAbstractSlider::actionTriggered, bar,
                     [bar, handler = std::move(handler)](int action) {
                         // The signal comes before the bar takes its new
                         // value: value() is still the old position and
                         // sliderPosition() the thumb.
                         const int p = ScrollPositionAfter(action, bar->value(),
                                                           bar->sliderPosition());
                         bar->setValue(p);
                         handler(bar, p);
                     });
}

CGroupBox::CGroupBox(const QString& text, QWidget* parent) : QWidget(parent), title(text)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void CGroupBox::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QFontMetrics metrics(font());
    const int lineY = metrics.height() / 2;
    // An etched frame: a dark line with a light one beside it.
    const QRect frame = rect().adjusted(0, lineY, -2, -2);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(frame);
    painter.setPen(palette().color(QPalette::Light));
    painter.drawRect(frame.translated(1, 1));
    if (title.isEmpty())
        return;
    // The title covers the top line, with a little space on either side.
    const int gap = metrics.horizontalAdvance(QLatin1Char(' ')) / 2 + 1;
    const QRect textRect(6, 0, metrics.horizontalAdvance(title) + 2 * gap, metrics.height());
    painter.fillRect(textRect, palette().color(QPalette::Window));
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled,
                                   QPalette::WindowText));
    painter.drawText(textRect, Qt::AlignCenter | Qt::TextSingleLine, title);
}

COwnerDrawButton::COwnerDrawButton(QWidget* parent) : QPushButton(parent)
{
    setAutoDefault(false);
}

void COwnerDrawButton::SetPainter(Painter p)
{
    painter = std::move(p);
    // Once the dialog paints it, the button covers all its pixels itself.
    setAttribute(Qt::WA_OpaquePaintEvent, static_cast<bool>(painter));
}

void COwnerDrawButton::paintEvent(QPaintEvent* event)
{
    if (!painter) {
        QPushButton::paintEvent(event);
        return;
    }
    QPainter p(this);
    painter(p, rect());
}
