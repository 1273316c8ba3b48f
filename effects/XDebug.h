// The diagnostic log. WriteLog and its kin are declared in kelvarine.h.
#ifndef KV_EFFECTS_XDEBUG_H
#define KV_EFFECTS_XDEBUG_H

#include "kelvarine.h"

// The descriptor of the log; 0 means no log.
extern int logfile;

// Deletes and recreates the log file; runs once per process.
void CreateLogFile();

#endif
