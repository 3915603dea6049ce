// The one editor that the exported functions manage.
#ifndef TAMERISK_HOST_EDITOR_INSTANCE_H
#define TAMERISK_HOST_EDITOR_INSTANCE_H

// Destroys the open editor, whose window remembers its placement on the
// way, and leaves none open. Does nothing when none is open.
void DeleteEditorInstance();

// For the library's unloading: forgets the hook by which the editor goes
// away with the QApplication, and closes an editor still open when that is
// allowed (on the application's thread, while it exists).
void ReleaseEditorAtUnload();

#endif
