#include "host_window.h"

#include <algorithm>

#include <utility>
#include <vector>

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QEvent>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

#include "material_slot.h"


namespace {

using Row = std::pair<const char*, QString>;

QString Number(double v)
{
    return QString::number(v, 'g', 6);
}

QString Bytes(const FZColor& c)
{
    return QStringLiteral("%1, %2, %3").arg(c.r).arg(c.g).arg(c.b);
}

// The fields a host would care about, in the order the editor shows them.
std::vector<Row> MaterialRows(const FZAttributeEx& m)
{
    return {
        {"ambient", Number(m.ambient)},
        {"diffuse", Number(m.diffuse)},
        {"transparency", Number(m.transparency)},
        {"refractiveIndex", Number(m.refractiveIndex)},
        {"emission", Number(m.emission)},
        {"reflection", Number(m.reflection)},
        {"color", Bytes(m.color)},
        {"highlightColor", Bytes(m.highlightColor)},
        {"highlightStrength", Number(m.highlightStrength)},
        {"highlightSharpness", Number(m.highlightSharpness)},
        {"smoothHighlight", QString::number(m.smoothHighlight)},
        {"anisotropic", QString::number(m.anisotropic)},
        {"anisotropy.type", QString::number(m.anisotropy.type)},
        {"rainbow", QString::number(m.rainbow)},
        {"stripeSpacing", Number(m.stripeSpacing)},
        {"incidenceDependence", Number(m.incidenceDependence)},
        {"attenuation", Number(m.attenuation)},
        {"thinGlass", QString::number(m.thinGlass)},
        {"thickness", Number(m.thickness)},
    };
}

QPixmap Swatch(const FZColor& c)
{
    QPixmap pixmap(48, 24);
    pixmap.fill(QColor(c.r, c.g, c.b));
    return pixmap;
}

QString ShowStateText(unsigned int show)
{
    switch (show) {
    case TAMERISK_NO_EDITOR:
        return QStringLiteral("closed");
    case TAMERISK_SW_SHOWMINIMIZED:
        return QStringLiteral("minimised");
    case TAMERISK_SW_SHOWMAXIMIZED:
        return QStringLiteral("maximised");
    default:
        return QStringLiteral("normal");
    }
}

} // namespace

HostWindow::HostWindow(const TameriskFunctions& api, const FZAttributeEx& material,
                       const QString& materialName)
    : api(api), material(material), materialName(materialName),
      notifyMessage(static_cast<unsigned int>(QEvent::registerEventType()))
{
    setWindowTitle(QStringLiteral("Tamerisk host"));
    auto* open = new QPushButton(QStringLiteral("Open editor"), this);
    auto* close = new QPushButton(QStringLiteral("Close editor"), this);
    colorBind = new QCheckBox(QStringLiteral("Colour bind (the host owns the colour)"), this);
    preview = new QLabel(this);
    preview->setMinimumSize(160, 160);
    preview->setAlignment(Qt::AlignCenter);
    surfaceSwatch = new QLabel(this);
    highlightSwatch = new QLabel(this);
    for (QLabel* swatch : {surfaceSwatch, highlightSwatch}) {
        swatch->setFrameShape(QFrame::Box);  // a white swatch stays visible
        swatch->setFixedSize(50, 26);
    }
    table = new QTableWidget(0, 2, this);
    table->setHorizontalHeaderLabels({QStringLiteral("Field"), QStringLiteral("Value")});
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    state = new QLabel(this);

    auto* layout = new QGridLayout(this);
    layout->addWidget(open, 0, 0);
    layout->addWidget(close, 0, 1);
    layout->addWidget(colorBind, 0, 2);
    layout->addWidget(new QLabel(QStringLiteral("Preview (from the editor)"), this), 1, 0);
    layout->addWidget(preview, 2, 0, 1, 2);
    layout->addWidget(new QLabel(QStringLiteral("Surface colour"), this), 3, 0);
    layout->addWidget(surfaceSwatch, 3, 1);
    layout->addWidget(new QLabel(QStringLiteral("Highlight colour"), this), 4, 0);
    layout->addWidget(highlightSwatch, 4, 1);
    layout->addWidget(table, 1, 2, 5, 1);
    layout->addWidget(state, 6, 0, 1, 3);
    auto* hints = new QLabel(QStringLiteral(
        "In the editor: Ctrl+Z undoes, Ctrl+Shift+Z or Ctrl+Y redoes; Ctrl+C copies the material "
        "as JSON text and Ctrl+V pastes one; a .qva file dropped on it loads; a double click on "
        "its preview opens a large preview."), this);
    hints->setWordWrap(true);
    layout->addWidget(hints, 7, 0, 1, 3);
    layout->addWidget(new QLabel(QStringLiteral("Two more materials, each with an editor the host owns:"), this),
                      8, 0, 1, 3);
    for (int i = 0; i < 2; ++i) {
        materialSlots[i] = new MaterialSlot(QStringLiteral("material %1").arg(QChar(u'A' + i)), material, this);
        layout->addWidget(materialSlots[i], 9 + i, 0, 1, 3);
    }
    layout->setRowStretch(5, 1);
    resize(640, 700);

    connect(open, &QPushButton::clicked, this, [this] { OpenEditor(); });
    connect(close, &QPushButton::clicked, this, [this] {
        this->api.Close();
        ShowPreview();
        ShowEditorState();
    });
    connect(colorBind, &QCheckBox::toggled, this, [this](bool on) {
        this->api.SetColorBind(on ? 1 : 0);
        ShowPreview();
    });
    // The close box of the editor only hides it; the host asks now and then.
    auto* poll = new QTimer(this);
    connect(poll, &QTimer::timeout, this, [this] { ShowEditorState(); });
    poll->start(500);

    ShowMaterial();
    ShowPreview();
    ShowEditorState();
}

// Closing the editor before the host goes away lets it remember its place.
HostWindow::~HostWindow()
{
    api.Close();
}

void HostWindow::closeEvent(QCloseEvent* event)
{
    // The editor's close box only hides it, so it would keep the program
    // running with no window of the host left. Closing it here saves its
    // placement, as closing a host does.
    api.Close();
    QWidget::closeEvent(event);
    QCoreApplication::quit();
}

QWidget* HostWindow::EditorWindow() const
{
    for (QWidget* w : QApplication::topLevelWidgets()) {
        const bool owned = std::any_of(std::begin(materialSlots), std::end(materialSlots),
                                       [w](const MaterialSlot* slot) { return slot->Editor() == w; });
        if (w->inherits("CDlgAttribute") && !owned)
            return w;
    }
    return nullptr;
}

void HostWindow::OpenEditor()
{
    const unsigned int show = api.GetShow();
    if (show != TAMERISK_NO_EDITOR) {
        api.ShowWindow(show == TAMERISK_SW_SHOWMINIMIZED ? TAMERISK_SW_RESTORE : TAMERISK_SW_SHOW);
        ShowEditorState();
        return;
    }
    if (!api.Open(this, notifyMessage)) {
        api.Close();
        state->setText(QStringLiteral("The editor could not be opened."));
        return;
    }
    // Material and colour bind come after opening, which resets both.
    api.SetAttribute(&material);
    if (colorBind->isChecked())
        api.SetColorBind(1);
    if (!materialName.isEmpty())
        api.SetTitle(QStringLiteral("質感 ﾘﾓｺﾝ - %1").arg(materialName).toUtf8().constData());
    api.ShowWindow(TAMERISK_SW_SHOWNORMAL);
    ShowPreview();
    ShowEditorState();
}

bool HostWindow::event(QEvent* event)
{
    if (event->type() != static_cast<QEvent::Type>(notifyMessage))
        return QWidget::event(event);
    OnEditorNotify();
    return true;
}

// Runs inside the editor's button handler: the notification is sent, not
// posted, so reading the material here gets exactly what the user applied.
void HostWindow::OnEditorNotify()
{
    api.GetAttribute(&material);
    ++updatesReceived;
    ShowMaterial();
    ShowPreview();
    ShowEditorState();
}

void HostWindow::ShowMaterial()
{
    const std::vector<Row> rows = MaterialRows(material);
    table->setRowCount(static_cast<int>(rows.size()));
    for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
        table->setItem(i, 0, new QTableWidgetItem(QString::fromLatin1(rows[i].first)));
        table->setItem(i, 1, new QTableWidgetItem(rows[i].second));
    }
    surfaceSwatch->setPixmap(Swatch(material.color));
    highlightSwatch->setPixmap(Swatch(material.highlightColor));
}

// A demo shortcut: the picture is the editor's own preview (control 4000),
// rendered by Tamerisk. A real host would render the material itself.
void HostWindow::ShowPreview()
{
    const QWidget* editor = EditorWindow();
    QWidget* frame = editor ? editor->findChild<QWidget*>(QStringLiteral("4000")) : nullptr;
    // Shown twice as large, pixel for pixel, so the shading can be seen.
    if (frame) {
        const QPixmap picture = frame->grab();
        preview->setPixmap(picture.scaled(picture.size() * 2, Qt::KeepAspectRatio,
                                          Qt::FastTransformation));
    } else {
        preview->setText(QStringLiteral("(open the editor)"));
    }
}

void HostWindow::ShowEditorState()
{
    const unsigned int show = api.GetShow();
    const QWidget* editor = EditorWindow();
    const QString visibility = show == TAMERISK_NO_EDITOR ? QString()
                               : editor && editor->isVisible() ? QStringLiteral(", visible")
                                                               : QStringLiteral(", hidden");
    state->setText(QStringLiteral("Editor: %1%2. Updates received: %3")
                       .arg(ShowStateText(show), visibility)
                       .arg(updatesReceived));
}
