#include "dialogs/dlg_attribute.h"

#include <algorithm>
#include <array>
#include <string>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QColorDialog>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QHideEvent>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QScreen>
#include <QWindow>

#include <tamerisk/fz_truncate.h>

#include "dialogs/color_swatch.h"
#include "dialogs/dialog_template.h"
#include "dialogs/dlg_attribute_parameters.h"
#include "dialogs/large_preview.h"
#include "dialogs/material_history.h"
#include "dialogs/material_transfer.h"
#include "dialogs/random_color.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "host/settings.h"
#include "material/attribute_file.h"
#include "material/result_codes.h"
#include "preview/preview_panel.h"

namespace {

constexpr int kSliderMax = 64;

std::uint8_t ColorByte(float v)
{
    return static_cast<std::uint8_t>(FZTruncateClamped(static_cast<double>(v) * 255.0, 0, 255));
}

// The slider position that shows a record value v in 0..1.
int Position(float v)
{
    return FZTruncate(static_cast<double>(v) * kSliderMax);
}

// One slider: which control, where it stands for a record, and what a
// position in 0..1 (the position over 64) writes into the record.
struct SliderField {
    int id;
    int (*position)(const FZAttributeEx&);
    void (*store)(FZAttributeEx&, float);
};

constexpr SliderField kSliders[] = {
    {kIdRed, [](const FZAttributeEx& a) { return a.color.r * kSliderMax / 255; },
     [](FZAttributeEx& a, float v) { a.color.r = ColorByte(v); }},
    {kIdGreen, [](const FZAttributeEx& a) { return a.color.g * kSliderMax / 255; },
     [](FZAttributeEx& a, float v) { a.color.g = ColorByte(v); }},
    {kIdBlue, [](const FZAttributeEx& a) { return a.color.b * kSliderMax / 255; },
     [](FZAttributeEx& a, float v) { a.color.b = ColorByte(v); }},
    {kIdAmbient, [](const FZAttributeEx& a) { return Position(a.ambient); },
     [](FZAttributeEx& a, float v) { a.ambient = v; }},
    {kIdDiffuse, [](const FZAttributeEx& a) { return Position(a.diffuse); },
     [](FZAttributeEx& a, float v) { a.diffuse = v; }},
    {kIdHighlightStrength, [](const FZAttributeEx& a) { return Position(a.highlightStrength); },
     [](FZAttributeEx& a, float v) { a.highlightStrength = v; }},
    {kIdSpread,
     [](const FZAttributeEx& a) {
         return FZTruncate((1.0 - static_cast<double>(a.highlightSharpness)) * kSliderMax);
     },
     [](FZAttributeEx& a, float v) { a.highlightSharpness = static_cast<float>(1.0 - v); }},
    {kIdTransparency, [](const FZAttributeEx& a) { return Position(a.transparency); },
     [](FZAttributeEx& a, float v) { a.transparency = v; }},
    {kIdRefractiveIndex,
     [](const FZAttributeEx& a) {
         return FZTruncate(static_cast<double>(a.refractiveIndex) * kSliderMax / 2.0);
     },
     [](FZAttributeEx& a, float v) { a.refractiveIndex = static_cast<float>(2.0 * v); }},
    {kIdEmission, [](const FZAttributeEx& a) { return Position(a.emission); },
     [](FZAttributeEx& a, float v) { a.emission = v; }},
    {kIdReflection, [](const FZAttributeEx& a) { return Position(a.reflection); },
     [](FZAttributeEx& a, float v) { a.reflection = v; }},
};
constexpr std::size_t kSliderCount = std::size(kSliders);

// What colour bind disables: the colour sliders, their labels and bitmaps,
// the surface swatch and the random colour buttons.
constexpr int kColorControls[] = {
    kIdRed, kIdGreen, kIdBlue, kIdRedLabel, kIdGreenLabel, kIdBlueLabel,
    kIdRedBitmap, kIdGreenBitmap, kIdBlueBitmap, kIdColorSwatch, kIdRandom, kIdRandomType,
};

constexpr int kShapeCount = 4;

const char* const kSwatchLabel = "色選択";
constexpr int kSwatchFontHeight = 11;
constexpr int kHighlightSwatchFontHeight = 9;

// Paints a swatch of the colour, labelled "色選択", into the button.
void DrawSwatch(const FZColor& color, int fontHeight, QWidget* button)
{
    CColorSwatch swatch;
    float r, g, b;
    color.GetFloats(r, g, b);
    swatch.SetColor(r, g, b);
    swatch.SetFontHeight(fontHeight);
    swatch.SetLabel(QString::fromUtf8(kSwatchLabel));
    swatch.Draw(button);
}

// The file dialog of "開く" and "保存": material files first, starting in
// the current directory. An empty path when the user cancels.
QString AskFilePath(QFileDialog::AcceptMode mode)
{
    QFileDialog dialog(nullptr, QString(), QDir::currentPath(),
                       QString::fromUtf8("質感ﾌｧｲﾙ (*.qva);;すべてのﾌｧｲﾙ (*.*)"));
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptSave ? QFileDialog::AnyFile
                                                       : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(QStringLiteral("qva"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    return dialog.selectedFiles().front();
}

} // namespace

struct CDlgAttribute::Controls {
    explicit Controls(const DialogControls& built)
        : preview(built.Get<FZCanvas>(kIdPreview)),
          colorSwatch(built.Get<COwnerDrawButton>(kIdColorSwatch)),
          highlightSwatch(built.Get<COwnerDrawButton>(kIdHighlightSwatch)),
          random(built.Get<QPushButton>(kIdRandom)),
          randomType(built.Get<QPushButton>(kIdRandomType)),
          anisotropicParameter(built.Get<QPushButton>(kIdAnisotropicParameter)),
          rainbowParameter(built.Get<QPushButton>(kIdRainbowParameter)),
          transparencyParameter(built.Get<QPushButton>(kIdTransparencyParameter)),
          colorTransparency(built.Get<QCheckBox>(kIdColorTransparency)),
          smooth(built.Get<QCheckBox>(kIdSmooth)),
          anisotropic(built.Get<QCheckBox>(kIdAnisotropic)),
          rainbow(built.Get<QCheckBox>(kIdRainbow))
    {
        for (std::size_t i = 0; i < kSliderCount; ++i)
            sliders[i] = built.Get<QScrollBar>(kSliders[i].id);
        for (int id : kColorControls)
            colorControls.push_back(built.Get<QWidget>(id));
    }

    // Whether the user holds a slider's thumb: a drag is in progress.
    bool SliderHeld() const
    {
        return std::any_of(sliders.begin(), sliders.end(), [](const QScrollBar* bar) { return bar->isSliderDown(); });
    }

    std::array<QScrollBar*, kSliderCount> sliders{};  // in the order of kSliders
    FZCanvas* preview;
    COwnerDrawButton* colorSwatch;
    COwnerDrawButton* highlightSwatch;
    QPushButton* random;
    QPushButton* randomType;
    QPushButton* anisotropicParameter;
    QPushButton* rainbowParameter;
    QPushButton* transparencyParameter;
    QCheckBox* colorTransparency;
    QCheckBox* smooth;
    QCheckBox* anisotropic;
    QCheckBox* rainbow;
    std::vector<QWidget*> colorControls;
};

CDlgAttribute::CDlgAttribute(QWidget* parent)
    : QDialog(parent), preview(std::make_unique<CPreviewPanel>()),
      history(std::make_unique<CEditHistory>([this](const FZAttributeEx& r) { ShowRecord(r); }))
{
}

CDlgAttribute::CDlgAttribute(QWidget* notifyWindow, unsigned int notifyMessage)
    : QDialog(nullptr), notifyWindow(notifyWindow), notifyMessage(notifyMessage),
      preview(std::make_unique<CPreviewPanel>()),
      history(std::make_unique<CEditHistory>([this](const FZAttributeEx& r) { ShowRecord(r); }))
{
}

CDlgAttribute::~CDlgAttribute()
{
    if (created)
        OnDestroy();
    preview.reset();
}

bool CDlgAttribute::Create()
{
    if (created)
        return false;
    const DialogControls built = BuildDialog(*this, AttributeDialogTemplate());
    controls = std::make_unique<Controls>(built);
    ConnectHandlers(built);
    created = true;
    return OnInitDialog();
}

void CDlgAttribute::SetAttribute(const FZAttributeEx& a)
{
    attribute = a;
    history->Restart();
}

void CDlgAttribute::GetAttribute(FZAttributeEx& a) const
{
    a = attribute;
}

void CDlgAttribute::SetColorBind(int bind)
{
    colorBind = bind;
    if (created)
        SetColorControlsOnOff();
}

int CDlgAttribute::GetColorBind() const
{
    return colorBind;
}

void CDlgAttribute::UpdatePanelView()
{
    if (!created)
        return;
    UpdateControlsFromAttribute();
    SetColorControlsOnOff();
    ReDraw();
}

// The dialog's message map: every control's signal meets its handler here.
void CDlgAttribute::ConnectHandlers(const DialogControls& built)
{
    const auto onClick = [this, &built](int id, void (CDlgAttribute::*handler)()) {
        connect(built.Get<QAbstractButton>(id), &QAbstractButton::clicked, this, handler);
    };
    onClick(kIdUpdate, &CDlgAttribute::OnButtonUpdate);
    onClick(kIdColorSwatch, &CDlgAttribute::OnButtonColor);
    onClick(kIdHighlightSwatch, &CDlgAttribute::OnButtonHighlightColor);
    onClick(kIdRandom, &CDlgAttribute::OnButtonColorRandom);
    onClick(kIdAnisotropic, &CDlgAttribute::OnCheckAnisotropic);
    onClick(kIdLoad, &CDlgAttribute::OnButtonLoad);
    onClick(kIdSave, &CDlgAttribute::OnButtonSave);
    onClick(kIdColorTransparency, &CDlgAttribute::OnCheckColorTransparency);
    onClick(kIdSmooth, &CDlgAttribute::OnCheckHighlightSmooth);
    onClick(kIdRandomType, &CDlgAttribute::OnButtonColorRandomType);
    onClick(kIdRainbow, &CDlgAttribute::OnCheckRainbowHighlight);
    onClick(kIdAnisotropicParameter, &CDlgAttribute::OnButtonAnisotropicParameter);
    onClick(kIdRainbowParameter, &CDlgAttribute::OnButtonRainbowHighlightParameter);
    onClick(kIdTransparencyParameter, &CDlgAttribute::OnButtonTransparencyParameter);
    onClick(kIdShapePrevious, &CDlgAttribute::OnButtonSampleShapePrevious);
    onClick(kIdShapeNext, &CDlgAttribute::OnButtonSampleShapeNext);

    for (std::size_t i = 0; i < kSliderCount; ++i) {
        ConnectHScroll(controls->sliders[i], [this, i](QScrollBar*, int p) { OnHScroll(i, p); });
        history->Watch(controls->sliders[i]);
        // The drag is over: the large preview refines its draft at once.
        connect(controls->sliders[i], &QAbstractSlider::sliderReleased, this, [this] {
            if (largePreview)
                largePreview->ShowMaterial(attribute, colorBind, sampleShape);
        });
    }
    ConnectEditActions();

    // The space bar notifies the host wherever the focus is in the window,
    // and presses no button.
    auto* space = new QShortcut(QKeySequence(Qt::Key_Space), this);
    connect(space, &QShortcut::activated, this, &CDlgAttribute::OnButtonUpdate);
}

bool CDlgAttribute::OnInitDialog()
{
    for (QScrollBar* bar : controls->sliders) {
        bar->setRange(0, kSliderMax);
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
    if (QWindow* window = windowHandle())
        connect(window, &QWindow::screenChanged, this, &CDlgAttribute::OnScreenChanged);
    randomFamily = 0;
    return true;
}

void CDlgAttribute::OnScreenChanged()
{
    // A screen of another density wants a frame of another pixel size; the
    // preview is made again for it rather than shown stretched.
    if (preview->FitsControl(controls->preview))
        return;
    static_cast<void>(preview->SetUp(controls->preview, sampleShape));
    ReDraw();
}

void CDlgAttribute::MakePreviewSquare()
{
    QWidget* control = controls->preview;
    const QRect r = control->geometry();
    const int side = r.width() - r.width() % 2;
    control->setGeometry(r.x(), r.y(), side, side);
}

void CDlgAttribute::closeEvent(QCloseEvent* event)
{
    OnClose();
    // Closing only puts the window away; it must not count as a closed
    // window for the host application.
    event->ignore();
}

void CDlgAttribute::accept()
{
    OnOK();
}

void CDlgAttribute::reject()
{
    OnClose();
}

void CDlgAttribute::OnClose()
{
    showMinimized();
    hide();
}

void CDlgAttribute::OnOK()
{
    showMinimized();
    hide();
}

void CDlgAttribute::OnDestroy()
{
    SaveParameter();
}

void CDlgAttribute::contextMenuEvent(QContextMenuEvent* event)
{
    OnContextMenu(event->globalPos());
}

void CDlgAttribute::OnContextMenu(const QPoint& globalPos)
{
    const QWidget* random = controls->random;
    // The button's window rectangle, its right and bottom edges included.
    const QPoint topLeft = random->mapToGlobal(QPoint(0, 0));
    if (globalPos.x() >= topLeft.x() && globalPos.x() <= topLeft.x() + random->width()
        && globalPos.y() >= topLeft.y() && globalPos.y() <= topLeft.y() + random->height())
        RandomButtonSubMenu(globalPos);
}

void CDlgAttribute::OnButtonUpdate()
{
    if (notifyWindow.isNull()) {
        ShowMessage(QString::fromUtf8("送信相手がいない。"));
        return;
    }
    QEvent notification(static_cast<QEvent::Type>(notifyMessage));
    QCoreApplication::sendEvent(notifyWindow.data(), &notification);
}

void CDlgAttribute::OnHScroll(std::size_t slider, int position)
{
    double v = position / static_cast<double>(kSliderMax);
    v = v < 0.0 ? 0.0 : (v > 1.0 ? 1.0 : v);
    FZAttributeEx edited = attribute;
    kSliders[slider].store(edited, static_cast<float>(v));
    Edit(edited, ControlSync::Keep);
}

void CDlgAttribute::Edit(const FZAttributeEx& edited, ControlSync sync)
{
    const FZAttributeEx before = attribute;
    attribute = edited;
    if (sync == ControlSync::FromRecord)
        UpdateControlsFromAttribute();
    ReDraw();
    history->Record(before, attribute);
}

void CDlgAttribute::ShowRecord(const FZAttributeEx& record)
{
    attribute = record;
    UpdatePanelView();
}

void CDlgAttribute::UpdateControlsFromAttribute()
{
    for (std::size_t i = 0; i < kSliderCount; ++i) {
        // The bar holds a position beyond its range at the nearer end.
        controls->sliders[i]->setValue(kSliders[i].position(attribute));
    }
    SetButtonChecked(controls->colorTransparency, attribute.colorTransparency != 0);
    SetButtonChecked(controls->anisotropic, attribute.anisotropic != 0);
    SetButtonChecked(controls->rainbow, attribute.rainbow != 0);
    SetButtonChecked(controls->smooth, attribute.smoothHighlight != 0);
}

void CDlgAttribute::SetColorControlsOnOff()
{
    for (QWidget* control : controls->colorControls)
        control->setEnabled(colorBind == 0);
}

void CDlgAttribute::UpdateEnabling()
{
    controls->anisotropicParameter->setEnabled(controls->anisotropic->isChecked());
    controls->rainbowParameter->setEnabled(controls->rainbow->isChecked());
    controls->transparencyParameter->setEnabled(attribute.transparency != 0.0f);
}

void CDlgAttribute::ReDraw()
{
    // A frame that could not be rendered is not shown; the last one stays.
    if (preview->ApplyMaterial(attribute, colorBind) == FZResult::Ok)
        preview->Present(controls->preview);
    DrawColorPallete();
    DrawHighlightColorPallete();
    UpdateEnabling();
    if (largePreview)
        largePreview->ShowMaterial(attribute, colorBind, sampleShape, controls->SliderHeld());
}

void CDlgAttribute::ShowSampleShape(int shape)
{
    sampleShape = shape;
    // The sample layer keeps its material: one render shows the new shape.
    if (preview->BuildSampleShape(sampleShape) == FZResult::Ok)
        preview->Present(controls->preview);
    if (largePreview)
        largePreview->ShowMaterial(attribute, colorBind, sampleShape);
}

void CDlgAttribute::DrawColorPallete()
{
    DrawSwatch(attribute.color, kSwatchFontHeight, controls->colorSwatch);
}

void CDlgAttribute::DrawHighlightColorPallete()
{
    DrawSwatch(attribute.highlightColor, kHighlightSwatchFontHeight, controls->highlightSwatch);
}

bool CDlgAttribute::PickColor(FZColor& color)
{
    // Qt's own picker always shows the custom colour part, as asked.
    QColorDialog picker(QColor(color.r, color.g, color.b), nullptr);
    picker.setOption(QColorDialog::DontUseNativeDialog);
    if (picker.exec() != QDialog::Accepted)
        return false;
    const QColor chosen = picker.selectedColor();
    color.SetBytes(static_cast<std::uint8_t>(chosen.red()), static_cast<std::uint8_t>(chosen.green()),
                   static_cast<std::uint8_t>(chosen.blue()));
    return true;
}

void CDlgAttribute::OnButtonColor()
{
    FZAttributeEx edited = attribute;
    if (PickColor(edited.color))
        Edit(edited, ControlSync::FromRecord);
}

void CDlgAttribute::OnButtonHighlightColor()
{
    FZAttributeEx edited = attribute;
    if (PickColor(edited.highlightColor))
        Edit(edited, ControlSync::FromRecord);
}

void CDlgAttribute::OnButtonColorRandom()
{
    FZAttributeEx edited = attribute;
    float rgb[3];
    DrawFamilyColor(randomFamily, edited.color, rgb);
    edited.color.SetFloats(rgb);
    Edit(edited, ControlSync::FromRecord);
}

void CDlgAttribute::OnButtonColorRandomType()
{
    const QWidget* button = controls->randomType;
    const QPoint topLeft = button->mapToGlobal(QPoint(0, 0));
    const int left = topLeft.x();
    const int top = topLeft.y();
    const int right = left + button->width();
    const int bottom = top + button->height();
    RandomButtonSubMenu(QPoint((left + right) / 2, (top + bottom) / 2));
}

void CDlgAttribute::RandomButtonSubMenu(const QPoint& globalPos)
{
    QMenu menu(this);
    for (const FamilyMenuItem& item : FamilyMenuItems()) {
        QAction* action = menu.addAction(QString::fromUtf8(item.text));
        action->setData(kFamilyCommandBase + item.family);
        action->setCheckable(true);
        action->setChecked(item.family == randomFamily);
        if (item.family == kFamilyAll)
            menu.addSeparator();
    }
    // Choosing a family draws no colour; the next "ﾗﾝﾀﾞﾑ" does.
    if (const QAction* chosen = menu.exec(globalPos))
        randomFamily = chosen->data().toInt() - kFamilyCommandBase;
}

void CDlgAttribute::OnCheckAnisotropic()
{
    FZAttributeEx edited = attribute;
    edited.anisotropic = controls->anisotropic->isChecked() ? 1 : 0;
    Edit(edited, ControlSync::Keep);
}

void CDlgAttribute::OnCheckRainbowHighlight()
{
    FZAttributeEx edited = attribute;
    edited.rainbow = controls->rainbow->isChecked() ? 1 : 0;
    Edit(edited, ControlSync::Keep);
}

void CDlgAttribute::OnCheckHighlightSmooth()
{
    FZAttributeEx edited = attribute;
    edited.smoothHighlight = controls->smooth->isChecked() ? 1 : 0;
    if (edited.smoothHighlight != 0)
        edited.smoothWidth = 2.0f;
    Edit(edited, ControlSync::Keep);
}

void CDlgAttribute::OnCheckColorTransparency()
{
    // Stored for the host; nothing on the preview depends on it, but it is
    // an edit like any other.
    FZAttributeEx edited = attribute;
    edited.colorTransparency = controls->colorTransparency->isChecked() ? 1 : 0;
    Edit(edited, ControlSync::Keep);
}

void CDlgAttribute::OpenParameterDialog(int (*run)(FZAttributeEx&, int, int&))
{
    FZAttributeEx copy = attribute;
    int shape = preview->ShapeNumber();
    const bool accepted = run(copy, colorBind, shape) == kIdOk;
    if (shape != preview->ShapeNumber())
        ShowSampleShape(shape);
    else
        sampleShape = shape;
    if (accepted)
        Edit(copy, ControlSync::FromRecord);
}

void CDlgAttribute::OnButtonAnisotropicParameter()
{
    OpenParameterDialog(RunAnisotropicParameterDialog);
}

void CDlgAttribute::OnButtonRainbowHighlightParameter()
{
    OpenParameterDialog(RunRainbowParameterDialog);
}

void CDlgAttribute::OnButtonTransparencyParameter()
{
    OpenParameterDialog(RunTransparencyParameterDialog);
}

void CDlgAttribute::OnButtonSampleShapePrevious()
{
    ShowSampleShape(sampleShape - 1 < 1 ? kShapeCount : sampleShape - 1);
}

void CDlgAttribute::OnButtonSampleShapeNext()
{
    ShowSampleShape(sampleShape + 1 > kShapeCount ? 1 : sampleShape + 1);
}

void CDlgAttribute::OnButtonLoad()
{
    const QString path = AskFilePath(QFileDialog::AcceptOpen);
    if (!path.isEmpty())
        ShowResult(LoadFile(path));
}

void CDlgAttribute::OnButtonSave()
{
    const QString path = AskFilePath(QFileDialog::AcceptSave);
    if (path.isEmpty())
        return;
    // Below the message, which file and why: a full disk and a write-protected
    // file call for different remedies.
    QString reason;
    if (const char* message = ResultMessage(SaveFile(path, &reason)))
        ShowMessage(QString::fromUtf8(message) + u'\n' + path + QStringLiteral(": ") + reason);
}

FZResult CDlgAttribute::LoadFile(const QString& path)
{
    FZAttributeEx loaded = attribute;
    const FZResult code = LoadAttributeFile(QFile::encodeName(path).constData(), loaded);
    if (code == FZResult::Ok)
        Edit(loaded, ControlSync::FromRecord);
    return code;
}

FZResult CDlgAttribute::SaveFile(const QString& path, QString* reason)
{
    FZAttributeEx record;
    GetAttribute(record);
    std::string why;
    const FZResult code = SaveAttributeFile(QFile::encodeName(path).constData(), record, &why);
    if (reason != nullptr)
        *reason = QString::fromLocal8Bit(why);
    return code;
}

void CDlgAttribute::ShowResult(FZResult code)
{
    if (const char* message = ResultMessage(code))
        ShowMessage(QString::fromUtf8(message));
}

void CDlgAttribute::ShowMessage(const QString& text)
{
    // Owned by the dialog, captioned with the application's name.
    QMessageBox box(QMessageBox::NoIcon, QCoreApplication::applicationName(), text,
                    QMessageBox::Ok, this);
    box.exec();
}

void CDlgAttribute::LoadParameter()
{
    LoadWindowPlacement(this);
}

void CDlgAttribute::SaveParameter()
{
    SaveWindowPlacement(this);
}

// Undo and redo from anywhere in the window, copy and paste too; a text field
// with the focus takes the keys for itself before the window sees them.
void CDlgAttribute::ConnectEditActions()
{
    QAction* undo = history->Stack().createUndoAction(this);
    undo->setShortcuts(QKeySequence::Undo);
    QAction* redo = history->Stack().createRedoAction(this);
    // Both usual redo keys, whichever of them the platform's list holds.
    QList<QKeySequence> redoKeys = QKeySequence::keyBindings(QKeySequence::Redo);
    for (const QKeySequence& key : {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z),
                                    QKeySequence(Qt::CTRL | Qt::Key_Y)}) {
        if (!redoKeys.contains(key))
            redoKeys.append(key);
    }
    redo->setShortcuts(redoKeys);
    // Actions are children of the dialog, which deletes them.
    auto* copy = new QAction(this);
    copy->setShortcuts(QKeySequence::Copy);
    connect(copy, &QAction::triggered, this, &CDlgAttribute::OnEditCopy);
    auto* paste = new QAction(this);
    paste->setShortcuts(QKeySequence::Paste);
    connect(paste, &QAction::triggered, this, &CDlgAttribute::OnEditPaste);
    addActions({undo, redo, copy, paste});
    setAcceptDrops(true);
}

void CDlgAttribute::OnEditCopy()
{
    QApplication::clipboard()->setText(MaterialToClipboardText(attribute));
}

void CDlgAttribute::OnEditPaste()
{
    FZAttributeEx pasted = attribute;
    if (MaterialFromClipboardText(QApplication::clipboard()->text(), pasted) != FZResult::Ok) {
        QApplication::beep();
        return;
    }
    Edit(pasted, ControlSync::FromRecord);
}

void CDlgAttribute::dragEnterEvent(QDragEnterEvent* event)
{
    if (!DraggedAttributeFile(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void CDlgAttribute::dropEvent(QDropEvent* event)
{
    const QString path = DraggedAttributeFile(event->mimeData());
    if (path.isEmpty())
        return;
    event->acceptProposedAction();
    // Loaded once the drop is over: an error box must not open while the
    // file manager still waits for the drop to finish.
    QMetaObject::invokeMethod(this, [this, path] { ShowResult(LoadFile(path)); },
                              Qt::QueuedConnection);
}

void CDlgAttribute::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (childAt(event->position().toPoint()) == controls->preview)
        OpenLargePreview();
}

void CDlgAttribute::hideEvent(QHideEvent* event)
{
    QDialog::hideEvent(event);
    if (largePreview && !event->spontaneous())
        largePreview->hide();
}

void CDlgAttribute::OpenLargePreview()
{
    if (!largePreview) {
        largePreview = std::make_unique<CLargePreview>(this);
        // Undo, redo, copy and paste work in the large preview as well.
        largePreview->addActions(actions());
    }
    largePreview->ShowMaterial(attribute, colorBind, sampleShape);
    largePreview->show();
    largePreview->raise();
    largePreview->activateWindow();
}
