// Keeping a thread's passes to itself (the definition is in parallel.cpp,
// beside the pool it keeps them from).
#ifndef TAMERISK_ENGINE_ROWS_ON_CALLING_THREAD_H
#define TAMERISK_ENGINE_ROWS_ON_CALLING_THREAD_H

// While one lives, every pass that its thread starts runs on that thread
// alone and leaves the pool to the others: a host thread drawing thumbnails
// never takes the workers from under the editor's renders.
class FZRowsOnCallingThread {
public:
    FZRowsOnCallingThread();
    ~FZRowsOnCallingThread();
    FZRowsOnCallingThread(const FZRowsOnCallingThread&) = delete;
    FZRowsOnCallingThread& operator=(const FZRowsOnCallingThread&) = delete;

private:
    bool previous;
};

#endif
