// What Tamerisk_GetLastResult reports, per calling thread.
#ifndef TAMERISK_HOST_LAST_RESULT_H
#define TAMERISK_HOST_LAST_RESULT_H

#include <tamerisk/tamerisk.h>

// Makes result the calling thread's answer to Tamerisk_GetLastResult.
void RecordLastResult(TameriskResult result);

#endif
