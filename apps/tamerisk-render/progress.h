// What tamerisk-render shows while it works, and how Ctrl+C ends it.
//
// On a terminal a bar on stderr follows the render: the pictures done of a
// batch, and how far the pass that is running has come. Anywhere else the
// tool stays quiet. Ctrl+C (or SIGTERM) asks the render to stop at its next
// chunk of rows; the tool then writes nothing more and ends with status 130.
#pragma once

#include <QString>

#include <chrono>

#include "engine/render_watch.h"

class Progress {
public:
    // pictures: how many the run makes. Installs the interrupt handler and
    // watches every render until the object goes.
    explicit Progress(int pictures);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // The picture now rendering (0 based) and the file it goes to.
    void Start(int index, const QString& target);
    // Prints a line on stderr, out of the bar's way.
    void Say(const QString& line);
    // Whether Ctrl+C was pressed.
    static bool Interrupted();

private:
    static void RowsDone(void* context, std::int32_t done, std::int32_t total);
    void Draw(double passFraction);
    void Clear();

    bool terminal = false;
    bool shown = false;
    int pictures = 1;
    int index = 0;
    QString target;
    std::chrono::steady_clock::time_point started;
    std::chrono::steady_clock::time_point lastDraw;
    FZRenderWatch watch;
};
