// The one editor that the exported functions manage.
#ifndef TAMERISK_HOST_EDITOR_INSTANCE_H
#define TAMERISK_HOST_EDITOR_INSTANCE_H

// Destroys the open editor, whose window remembers its placement on the
// way, and leaves none open. Does nothing when none is open.
void DeleteEditorInstance();

// For the library's finalisation, at dlclose or at process exit: forgets the
// hook by which the editor goes away with the QApplication. An editor still
// open then (only at exit: an open editor keeps the library loaded) is left
// to the end of the process untouched.
void ForgetEditorAtUnload();

#endif
