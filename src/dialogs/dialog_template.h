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
// A dialog class then finds its controls by id with GetDlgItem / DlgItem<T>.
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
//     the new position to the handler.
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

class QDialog;
class QLineEdit;
class QPainter;
class QScrollBar;
class QToolButton;

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
    NumberEdit,         // QLineEdit accepting digits only
    SpinButton,         // CSpinButton; `extra` is the id of its buddy edit
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
    int extra = 0;       // StaticBitmap: bitmap id; SpinButton: buddy id
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

// Builds the template's controls into `dialog` (which must have none yet),
// sets its font, caption, objectName and fixed client size, and returns the
// base units used. Window flags: title, system menu and close box only.
DialogBaseUnits BuildDialog(QDialog& dialog, const DialogTemplate& t);

// The direct child of `dialog` whose objectName is `id`; nullptr if none.
QWidget* GetDlgItem(const QWidget* dialog, int id);

template <typename T>
T* DlgItem(const QWidget* dialog, int id)
{
    return qobject_cast<T*>(GetDlgItem(dialog, id));
}

// The small window operations the dialogs use; a missing control is ignored
// (false for the queries).
void EnableDlgItem(const QWidget* dialog, int id, bool enable);
void CheckDlgButton(const QWidget* dialog, int id, bool checked);
bool IsDlgButtonChecked(const QWidget* dialog, int id);

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

// An up-down control attached to a buddy edit. The position shows as the
// buddy's text; the arrows step it by one within the range.
class CSpinButton : public QWidget {
    Q_OBJECT

public:
    explicit CSpinButton(QWidget* parent = nullptr);

    void SetBuddy(QLineEdit* edit);
    QLineEdit* Buddy() const { return buddy; }
    void SetRange(int lo, int hi);
    int Minimum() const { return minimum; }
    int Maximum() const { return maximum; }
    // Sets the position, held within the range, and writes it to the buddy.
    void SetPos(int pos);
    // The buddy's number held within the range, or the last valid position
    // (set, stepped or typed) when the buddy's text is no number.
    int Pos() const;
    // One arrow press: +1 (up) or -1 (down).
    void Step(int delta);

signals:
    // Sent before the position moves (pos is still the old one).
    void deltaPos(int pos, int delta);
    // Sent after it moved.
    void positionChanged(int pos);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QLineEdit* buddy = nullptr;
    QToolButton* up = nullptr;
    QToolButton* down = nullptr;
    int minimum = 0;
    int maximum = 100;
    int position = 0;
};

#endif
