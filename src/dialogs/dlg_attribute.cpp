// CDlgAttribute's public members, and the window's life: creation,
// initialisation, the message map, the events the editor answers itself,
// putting the window away and remembering where it was.
#include <tamerisk/dlg_attribute.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QKeySequence>
#include <QMouseEvent>
#include <QScrollBar>
#include <QShortcut>
#include <QWindow>

#include "dialogs/dialog_template.h"
#include "dialogs/dlg_attribute_p.h"
#include "dialogs/large_preview.h"
#include "dialogs/material_history.h"
#include "dialogs/modal_window.h"
#include "dialogs/slider_value_tip.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "host/settings.h"
#include "preview/preview_panel.h"

CDlgAttribute::CDlgAttribute(QWidget* parent)
    : QDialog(parent), d(std::make_unique<CDlgAttributePrivate>(this, nullptr, 0))
{
}

CDlgAttribute::CDlgAttribute(QWidget* notifyWindow, unsigned int notifyMessage)
    : QDialog(nullptr), d(std::make_unique<CDlgAttributePrivate>(this, notifyWindow, notifyMessage))
{
}

CDlgAttribute::~CDlgAttribute()
{
    PutAwayModalWindows(this);
    if (d->created)
        d->OnDestroy();
    // The editor's inside goes before the window's widgets do.
    d.reset();
}

bool CDlgAttribute::Create()
{
    return d->Create();
}

void CDlgAttribute::SetAttribute(const FZAttributeEx& attribute)
{
    d->attribute = attribute;
    d->history->Restart();
}

void CDlgAttribute::GetAttribute(FZAttributeEx& attribute) const
{
    attribute = d->attribute;
}

void CDlgAttribute::SetColorBind(int bind)
{
    d->colorBind = bind;
}

int CDlgAttribute::GetColorBind() const
{
    return d->colorBind;
}

void CDlgAttribute::UpdatePanelView()
{
    d->UpdatePanelView();
}

void CDlgAttribute::done(int)
{
    d->OnOK();
}

bool CDlgAttribute::event(QEvent* event)
{
    // While the window is torn down there is no inside left to answer.
    if (d && d->HandleEvent(event))
        return true;
    return QDialog::event(event);
}

CDlgAttributePrivate::CDlgAttributePrivate(CDlgAttribute* q, QWidget* notifyWindow,
                                           unsigned int notifyMessage)
    : q(q), notifyWindow(notifyWindow), notifyMessage(notifyMessage),
      preview(std::make_unique<CPreviewPanel>()),
      history(std::make_unique<CEditHistory>([this](const FZAttributeEx& r) { ShowRecord(r); }))
{
}

CDlgAttributePrivate::~CDlgAttributePrivate() = default;

bool CDlgAttributePrivate::Create()
{
    if (created)
        return false;
    const DialogControls built = BuildDialog(*q, AttributeDialogTemplate());
    controls = std::make_unique<CAttributeControls>(built);
    ConnectHandlers(built);
    created = true;
    return OnInitDialog();
}

// The dialog's message map: every control's signal meets its handler here.
void CDlgAttributePrivate::ConnectHandlers(const DialogControls& built)
{
    const auto onClick = [this, &built](int id, void (CDlgAttributePrivate::*handler)()) {
        QObject::connect(built.Get<QAbstractButton>(id), &QAbstractButton::clicked, q,
                         [this, handler] { (this->*handler)(); });
    };
    onClick(kIdUpdate, &CDlgAttributePrivate::OnButtonUpdate);
    onClick(kIdColorSwatch, &CDlgAttributePrivate::OnButtonColor);
    onClick(kIdHighlightSwatch, &CDlgAttributePrivate::OnButtonHighlightColor);
    onClick(kIdRandom, &CDlgAttributePrivate::OnButtonColorRandom);
    onClick(kIdAnisotropic, &CDlgAttributePrivate::OnCheckAnisotropic);
    onClick(kIdLoad, &CDlgAttributePrivate::OnButtonLoad);
    onClick(kIdSave, &CDlgAttributePrivate::OnButtonSave);
    onClick(kIdColorTransparency, &CDlgAttributePrivate::OnCheckColorTransparency);
    onClick(kIdSmooth, &CDlgAttributePrivate::OnCheckHighlightSmooth);
    onClick(kIdRandomType, &CDlgAttributePrivate::OnButtonColorRandomType);
    onClick(kIdRainbow, &CDlgAttributePrivate::OnCheckRainbowHighlight);
    onClick(kIdAnisotropicParameter, &CDlgAttributePrivate::OnButtonAnisotropicParameter);
    onClick(kIdRainbowParameter, &CDlgAttributePrivate::OnButtonRainbowHighlightParameter);
    onClick(kIdTransparencyParameter, &CDlgAttributePrivate::OnButtonTransparencyParameter);
    onClick(kIdShapePrevious, &CDlgAttributePrivate::OnButtonSampleShapePrevious);
    onClick(kIdShapeNext, &CDlgAttributePrivate::OnButtonSampleShapeNext);
    for (std::size_t i = 0; i < kAttributeSliderCount; ++i) {
        ConnectHScroll(controls->sliders[i], [this, i](QScrollBar*, int p) { OnHScroll(i, p); });
        history->Watch(controls->sliders[i]);
        AttachValueTip(controls->sliders[i], [this, i](int p) { return SliderTip(attribute, i, p); });
        // The drag is over: the large preview refines its draft at once.
        QObject::connect(controls->sliders[i], &QAbstractSlider::sliderReleased, q, [this] {
            if (largePreview)
                largePreview->ShowMaterial(attribute, colorBind, sampleShape);
        });
    }
    ConnectEditActions();

    // The space bar notifies the host wherever the focus is in the window,
    // and presses no button.
    auto* space = new QShortcut(QKeySequence(Qt::Key_Space), q);
    QObject::connect(space, &QShortcut::activated, q, [this] { OnButtonUpdate(); });
}

// Undo and redo from anywhere in the window, copy and paste too; a text field
// with the focus takes the keys for itself before the window sees them.
void CDlgAttributePrivate::ConnectEditActions()
{
    QAction* undo = history->Stack().createUndoAction(q);
    undo->setShortcuts(QKeySequence::Undo);
    QAction* redo = history->Stack().createRedoAction(q);
    // Both usual redo keys, whichever of them the platform's list holds.
    QList<QKeySequence> redoKeys = QKeySequence::keyBindings(QKeySequence::Redo);
    for (const QKeySequence& key : {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z),
                                    QKeySequence(Qt::CTRL | Qt::Key_Y)}) {
        if (!redoKeys.contains(key))
            redoKeys.append(key);
    }
    redo->setShortcuts(redoKeys);
    // Actions are children of the dialog, which deletes them.
    auto* copy = new QAction(q);
    copy->setShortcuts(QKeySequence::Copy);
    QObject::connect(copy, &QAction::triggered, q, [this] { OnEditCopy(); });
    auto* paste = new QAction(q);
    paste->setShortcuts(QKeySequence::Paste);
    QObject::connect(paste, &QAction::triggered, q, [this] { OnEditPaste(); });
    q->addActions({undo, redo, copy, paste});
    q->setAcceptDrops(true);
}

bool CDlgAttributePrivate::OnInitDialog()
{
    for (QScrollBar* bar : controls->sliders) {
        bar->setRange(0, kAttributeSliderMax);
        bar->setValue(0);
    }
    colorBind = 0;
    UpdateControlsFromAttribute();
    MakePreviewSquare();
    // A failed set-up leaves the preview without a scene: the dialog still
    // works, the preview just stays blank, so the result is not shown.
    static_cast<void>(preview->SetUp(controls->preview));
    sampleShape = 1;
    ReDraw();
    LoadParameter();
    // Placing the window made its native window, which follows the screens.
    if (QWindow* window = q->windowHandle())
        QObject::connect(window, &QWindow::screenChanged, q, [this] { OnScreenChanged(); });
    randomFamily = 0;
    return true;
}

void CDlgAttributePrivate::OnScreenChanged()
{
    // A screen of another density wants a frame of another pixel size; the
    // preview is made again for it rather than shown stretched.
    if (preview->FitsControl(controls->preview))
        return;
    static_cast<void>(preview->SetUp(controls->preview, sampleShape));
    ReDraw();
}

void CDlgAttributePrivate::MakePreviewSquare()
{
    QWidget* control = controls->preview;
    const QRect r = control->geometry();
    const int side = r.width() - r.width() % 2;
    control->setGeometry(r.x(), r.y(), side, side);
}

bool CDlgAttributePrivate::HandleEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::Close:
        OnClose();
        // Closing only puts the window away; it must not count as a closed
        // window for the host application.
        event->ignore();
        return true;
    case QEvent::ContextMenu:
        if (created)
            OnContextMenu(static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
    case QEvent::DragEnter:
        return OnDragEnter(event);
    case QEvent::Drop:
        return OnDrop(event);
    case QEvent::MouseButtonDblClick:
        // A double click on the preview opens the large preview.
        if (created && q->childAt(static_cast<QMouseEvent*>(event)->position().toPoint()) == controls->preview)
            OpenLargePreview();
        return true;
    case QEvent::Hide:
        OnHide(event);
        return false;
    default:
        return false;
    }
}

void CDlgAttributePrivate::OnClose()
{
    q->showMinimized();
    q->hide();
}

void CDlgAttributePrivate::OnOK()
{
    q->showMinimized();
    q->hide();
}

void CDlgAttributePrivate::OnDestroy()
{
    SaveParameter();
}

void CDlgAttributePrivate::LoadParameter()
{
    // The step matches no window's frame exactly; it only has to leave the
    // caption of the window below in sight.
    constexpr int kCascadeStep = 32;
    int others = 0;
    bool held = false;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* editor = qobject_cast<CDlgAttribute*>(window);
        const CDlgAttributePrivate* other = editor && editor != q ? Of(editor) : nullptr;
        if (other && other->created) {
            ++others;
            held = held || other->holdsPlacement;
        }
    }
    holdsPlacement = claimsPlacement || !held;
    const int step = holdsPlacement ? 0 : others * kCascadeStep;
    LoadWindowPlacement(q, QPoint(step, step));
}

void CDlgAttributePrivate::SaveParameter()
{
    if (holdsPlacement)
        SaveWindowPlacement(q);
}
