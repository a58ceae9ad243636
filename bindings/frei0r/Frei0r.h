#pragma once

#include <cstdint>

/// The frei0r interface, version 1.2, as far as a module gives it: the functions that every module exports,
/// and the structures that a host passes to them.
#define KRL_FREI0R __attribute__((visibility("default")))

extern "C" {

enum { kFrei0rFilter = 0, kFrei0rSource = 1, kFrei0rMixer2 = 2 };
enum { kFrei0rBgra8888 = 0 };
enum { kFrei0rVersion = 1 };

struct f0r_plugin_info_t {
    const char* name;
    const char* author;
    int plugin_type;
    int color_model;
    int frei0r_version;
    int major_version;
    int minor_version;
    int num_params;
    const char* explanation;
};

enum { kFrei0rBool = 0, kFrei0rDouble = 1, kFrei0rColor = 2, kFrei0rPosition = 3, kFrei0rString = 4 };

struct f0r_param_info_t {
    const char* name;
    int type;
    const char* explanation;
};

/// What a parameter of kind colour or position points at; bools and doubles are a `double`, strings a
/// `char*`.
struct f0r_param_color_t {
    float r, g, b;
};
struct f0r_param_position_t {
    double x, y;
};

KRL_FREI0R int f0r_init();
KRL_FREI0R void f0r_deinit();
KRL_FREI0R void f0r_get_plugin_info(f0r_plugin_info_t* info);
KRL_FREI0R void f0r_get_param_info(f0r_param_info_t* info, int param_index);
KRL_FREI0R void* f0r_construct(unsigned int width, unsigned int height);
KRL_FREI0R void f0r_destruct(void* instance);
KRL_FREI0R void f0r_set_param_value(void* instance, void* param, int param_index);
KRL_FREI0R void f0r_get_param_value(void* instance, void* param, int param_index);
KRL_FREI0R void f0r_update(void* instance, double time, const uint32_t* inframe, uint32_t* outframe);
KRL_FREI0R void f0r_update2(void* instance, double time, const uint32_t* inframe1, const uint32_t* inframe2,
                            const uint32_t* inframe3, uint32_t* outframe);
}
