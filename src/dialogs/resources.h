// The dialogs' pictures (the slider bitmaps) live in a Qt resource compiled
// into the library. A static library's resources must be registered by hand;
// this does it, once, however often it is called. The library's load hook
// and BuildDialog both call it.
#ifndef TAMERISK_DIALOGS_RESOURCES_H
#define TAMERISK_DIALOGS_RESOURCES_H

void TameriskRegisterResources();

#endif
