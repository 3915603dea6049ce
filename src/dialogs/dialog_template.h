// The dialog platform layer: dialogs built from tables.
//
// How a dialog is made
// --------------------
// Every dialog of Tamerisk is described by a DialogTemplate: a caption, a
// client size and a table of controls, all positions in dialog units (see
// templates.h for the four tables). BuildDialog turns the table into child
// widgets of a QDialog:
//   * the dialog's objectName() is its template id ("4000"), each control's
//     objectName() its control id ("1020"); controls without an id get none;
//   * dialog units become pixels from the dialog font's average character
//     width and height, the way Windows converts them (DialogBaseUnits);
//   * controls keep the template's order as their stacking order, so a group
//     box listed first lies under the controls it frames.
// BuildDialog hands back the controls it made; a dialog class resolves its
// typed members from them once, right after building (DialogControls::Get).
//
// Conventions for dialog classes
// ------------------------------
//   * Handlers are named On... after the event or control they answer
//     (OnHScroll, OnButtonColor, OnCheckAnisotropic).
//   * Every signal is connected in ONE place per dialog (a private
//     ConnectHandlers called right after BuildDialog), so the table of
//     connections reads like the dialog's message map.
//   * Horizontal scroll bars go through ConnectHScroll, which applies the
//     shared stepping rule (line +-1, page +-2, drag to the thumb) and hands
//     the new position to the handler. They take the keyboard focus like any
//     other control, so Tab reaches them in template order.
//   * A number edit with a spin button is one QSpinBox.
//   * Owner-drawn buttons are COwnerDrawButton; static frames are FZCanvas
//     widgets that show what was last drawn into them.
#ifndef TAMERISK_DIALOGS_DIALOG_TEMPLATE_H
#define TAMERISK_DIALOGS_DIALOG_TEMPLATE_H

#include <functional>
#include <span>

#include <QFont>
#include <QPushButton>
#include <QRect>
#include <QWidget>

#include <utility>
#include <vector>

class QDialog;
class QPainter;
class QScrollBar;

// What a template line creates.
enum class ControlKind {
    PushButton,         // QPushButton
    DefaultPushButton,  // QPushButton, the dialog's default button
    OwnerDrawnButton,   // COwnerDrawButton, painted by the dialog
    AutoCheckBox,       // QCheckBox
    AutoRadioButton,    // QRadioButton (exclusive among the dialog's radios)
    GroupBox,           // CGroupBox, a frame only: controls are siblings
    Label,              // QLabel, left aligned, single line
    StaticBitmap,       // QLabel with the bitmap of `extra`, sized to it
    StaticFrame,        // FZCanvas
    HScrollBar,         // QScrollBar, horizontal
    SpinBox,            // QSpinBox: a number edit with its spin button
};

// Style flags of a control.
enum ControlStyle : unsigned {
    kStyleNone = 0,
    kStyleHidden = 1u << 0,    // not made visible (and no code shows it)
    kStyleDisabled = 1u << 1,  // starts disabled
};

inline constexpr int kNoId = -1;  // a control nobody looks up
inline constexpr int kIdOk = 1;
inline constexpr int kIdCancel = 2;

struct ControlTemplate {
    ControlKind kind;
    int id;              // kNoId: no objectName
    const char* text;    // UTF-8; nullptr for none
    int x, y, w, h;      // dialog units; a bitmap sizes itself to its picture
    unsigned style = kStyleNone;
    int extra = 0;       // StaticBitmap: bitmap id
};

struct DialogTemplate {
    int id;
    const char* caption;   // UTF-8
    int w, h;              // client size in dialog units
    const char* fontFace;  // e.g. "ＭＳ Ｐゴシック"
    int pointSize;
    std::span<const ControlTemplate> controls;
};

// Windows' MulDiv: a * b / c in 64 bits, rounded half away from zero.
// c == 0 gives -1, as Windows does.
int MulDiv(int a, int b, int c);

// A Japanese font by its Windows face name. Fontconfig does not know the
// Windows names, so the free IPA faces of the same design follow as
// fallbacks ("ＭＳ Ｐゴシック" -> IPAPGothic, "ＭＳ ゴシック" -> IPAGothic).
QFont JapaneseFont(const char* face, int pixelHeight);

// The dialog font: the face at `pointSize` points on a 96 dpi screen, as a
// dialog template's font is created (9 points are 12 pixels).
QFont DialogFont(const char* face, int pointSize);

// Dialog units to pixels. cx is the font's average character width (the
// width of "A..Za..z" over 52, rounded), cy its height.
struct DialogBaseUnits {
    int cx = 0;
    int cy = 0;

    static DialogBaseUnits FromFont(const QFont& font);
    int X(int du) const { return MulDiv(du, cx, 4); }
    int Y(int du) const { return MulDiv(du, cy, 8); }
    QRect ToPixels(int x, int y, int w, int h) const { return QRect(X(x), Y(y), X(w), Y(h)); }
};

// What BuildDialog made: the base units and every control with an id.
class DialogControls {
public:
    DialogBaseUnits units;

    void Add(int id, QWidget* widget) { controls.emplace_back(id, widget); }
    // The control `id` as a T. The tables are fixed in code, so a dialog
    // asking for a control its table lacks is a programming error.
    template <typename T>
    T* Get(int id) const
    {
        for (const auto& [controlId, widget] : controls) {
            if (controlId == id) {
                T* typed = qobject_cast<T*>(widget);
                Q_ASSERT(typed != nullptr);
                return typed;
            }
        }
        Q_ASSERT_X(false, "DialogControls::Get", "no control with this id");
        return nullptr;
    }

private:
    std::vector<std::pair<int, QWidget*>> controls;
};

// Builds the template's controls into `dialog` (which must have none yet),
// sets its font, caption, objectName and fixed client size. Window flags:
// title, system menu and close box only.
DialogControls BuildDialog(QDialog& dialog, const DialogTemplate& t);

// The direct child of `dialog` whose objectName is `id`; nullptr if none.
// For code outside the dialog (a host, a test) that knows only the ids.
QWidget* GetDlgItem(const QWidget* dialog, int id);

template <typename T>
T* DlgItem(const QWidget* dialog, int id)
{
    return qobject_cast<T*>(GetDlgItem(dialog, id));
}

// Sets a button's check state; an exclusive radio button can be cleared too.
void SetButtonChecked(QWidget* button, bool checked);

// The stepping rule of every horizontal scroll bar: single step -1/+1, page
// step -2/+2, drag or thumb move to the thumb; any other action keeps the
// position. `action` is a QAbstractSlider::SliderAction. The result is not
// held in the bar's range.
int ScrollPositionAfter(int action, int position, int thumb);

// Connects the bar's actions: each action computes the new position p by the
// rule above, sets the bar to p (the bar holds it within its range) and then
// calls handler(bar, p) with p as computed, before any holding.
void ConnectHScroll(QScrollBar* bar, std::function<void(QScrollBar*, int)> handler);

// An owner-drawn push button: it paints whatever painter it was given last
// (nothing but its background before that).
class COwnerDrawButton : public QPushButton {
    Q_OBJECT

public:
    using Painter = std::function<void(QPainter&, const QRect&)>;

    explicit COwnerDrawButton(QWidget* parent = nullptr);
    void SetPainter(Painter painter);
    bool HasPainter() const { return static_cast<bool>(painter); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Painter painter;
};

// A group box as dialogs draw it: an etched frame whose top line runs
// through the middle of the title. It only paints; the controls it frames
// are its siblings, and mouse events pass through it to the dialog.
class CGroupBox : public QWidget {
    Q_OBJECT

public:
    explicit CGroupBox(const QString& title, QWidget* parent = nullptr);
    QString Title() const { return title; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString title;
};

#endif
