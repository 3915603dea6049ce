// The demo host's window: what a 3D application does with the editor. It
// keeps its own copy of the material, opens the editor of the C functions
// with it, and takes the edited material back when the editor notifies
// ("更新" or the space bar). Beside it, two more materials each have an editor
// that the host owns itself (MaterialSlot), all open at once if the user likes.
#ifndef TAMERISK_HOST_APP_HOST_WINDOW_H
#define TAMERISK_HOST_APP_HOST_WINDOW_H

#include <QString>
#include <QWidget>

#include <tamerisk/tamerisk.h>

class MaterialSlot;
class QCheckBox;
class QLabel;
class QTableWidget;


class HostWindow : public QWidget {
public:
    HostWindow(const TameriskFunctions& api, const FZAttributeEx& material, const QString& materialName);
    ~HostWindow() override;

    // Opens the editor with the host's material, or brings back the one that
    // is open.
    void OpenEditor();
    // The C functions' editor's window, or null when none is open.
    QWidget* EditorWindow() const;

protected:
    bool event(QEvent* event) override;
    // Closing the host closes the editor with it and ends the program.
    void closeEvent(QCloseEvent* event) override;

private:
    void OnEditorNotify();
    void ShowMaterial();
    void ShowPreview();
    void ShowEditorState();

    const TameriskFunctions& api;
    FZAttributeEx material;
    QString materialName;
    const unsigned int notifyMessage;
    int updatesReceived = 0;

    QTableWidget* table = nullptr;
    QLabel* preview = nullptr;
    QLabel* surfaceSwatch = nullptr;
    QLabel* highlightSwatch = nullptr;
    QCheckBox* colorBind = nullptr;
    QLabel* state = nullptr;
    MaterialSlot* materialSlots[2] = {};
};

#endif
