#pragma once

#include "krlimage.h"

/// Scripts of Lingo for JavaScript, in the manner of the C interface.
extern "C" {

/// A script with the pictures that it finds and saves, and what running it came to.
typedef struct krl_script krl_script;

/// NULL without memory.
KRL_API krl_script* krl_script_new(void);
/// NULL is fine.
KRL_API void krl_script_free(krl_script* script);
/// Gives a script a copy of a picture of RGBA without padding, under the name of a file.
KRL_API krl_code krl_script_give(krl_script* script, const char* name, const krl_picture* picture);
/// Runs a script file with `count` arguments and at most so many steps. KRL_METHOD_FAILED if it ended early.
KRL_API krl_code krl_script_run(krl_script* script, const char* file, const char* const* arguments, size_t count,
                                double steps);

/// What it printed, what it showed as alerts, and why it ended early.
KRL_API const char* krl_script_output(const krl_script* script);
KRL_API const char* krl_script_alerts(const krl_script* script);
KRL_API const char* krl_script_error(const krl_script* script);
/// Where it ended early, from 1; 0 if there is no such place.
KRL_API int32_t krl_script_line(const krl_script* script);
KRL_API int32_t krl_script_column(const krl_script* script);

/// The pictures that it saved, of RGBA, by index.
KRL_API size_t krl_script_saved_count(const krl_script* script);
KRL_API const char* krl_script_saved_name(const krl_script* script, size_t index);
KRL_API krl_code krl_script_saved_picture(const krl_script* script, size_t index, krl_picture* picture);
}
