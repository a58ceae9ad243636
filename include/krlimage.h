/* KRLImage: about a hundred effects on 32-bit pictures in memory, for C and for everything that calls C.
 *
 *     uint8_t pixels[480][640][4] = ...;
 *     krl_picture picture = {sizeof picture, pixels, 640, 480, 640 * 4, KRL_RGBA};
 *     krl_engine* engine = krl_engine_new(0);
 *     krl_apply(engine, &picture, "brightness(40, #RGB)", NULL);
 *     krl_engine_free(engine);
 *
 * Methods, their arguments and what these mean are in docs/methods.md; `krl_catalogue` lists them for
 * programs.
 *
 * Errors: a function that can fail gives a `krl_code`, or NULL where it gives a pointer. Nothing aborts or
 * throws: a null pointer, an unknown name or a picture that cannot be is an error like any other.
 *
 * Threads: there is no global state. An engine, a result or a value is used by one thread at a time, except
 * to cancel an engine; different ones by any number of threads at once.
 *
 * Strings: UTF-8, ended by a zero byte. Those that a function gives belong to the object they were asked of
 * and live as long as it does; those of the catalogue live as long as the program. Strings passed in are
 * copied.
 *
 * Growth: structures begin with their size, which whoever fills them sets to `sizeof`; later versions add
 * members at the end. Codes, kinds and flags keep their numbers. */
#ifndef KRLIMAGE_H
#define KRLIMAGE_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__) && !defined(_WIN32)
#define KRL_API __attribute__((visibility("default")))
#else
#define KRL_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Version ------------------------------------------------------------------------------------------- */

/* Version of this interface. The major number changes when a program would have to. */
#define KRL_INTERFACE_MAJOR 1
#define KRL_INTERFACE_MINOR 3
#define KRL_INTERFACE_VERSION (KRL_INTERFACE_MAJOR * 1000 + KRL_INTERFACE_MINOR)

/* `KRL_INTERFACE_VERSION` of the library that is loaded. */
KRL_API int32_t krl_interface_version(void);

/* Release of the library, such as "2.1.0". */
KRL_API const char* krl_release(void);

/* ---- Codes --------------------------------------------------------------------------------------------- */

/* What became of a call: KRL_OK or why it failed. */
typedef int32_t krl_code;
enum {
    KRL_OK = 0,
    KRL_BAD_USE = 1,          /* a null pointer, a structure without its size, an index out of range */
    KRL_NO_SUCH_METHOD = 2,   /* no method of that name */
    KRL_NO_SUCH_ARGUMENT = 3, /* the method has no argument of that name */
    KRL_TOO_MANY = 4,         /* more arguments than the method has */
    KRL_GIVEN_TWICE = 5,      /* one argument is given twice */
    KRL_MISSING = 6,          /* a picture, or a value without a stand-in, is left out */
    KRL_WRONG_KIND = 7,       /* a value is of another kind */
    KRL_NO_SUCH_CHOICE = 8,   /* a symbol is none of those that the argument takes */
    KRL_BAD_PICTURE = 9,      /* no pixels, a size that cannot be, rows shorter than their pixels */
    KRL_BAD_TEXT = 10,        /* a text is no value or call */
    KRL_NOT_CALLABLE = 11,    /* the method manages an engine, which `krl_engine` does here */
    KRL_METHOD_FAILED = 12,   /* the method ran and failed, with the text of `krl_result_error` */
    KRL_OUT_OF_MEMORY = 13,
    KRL_CANCELLED = 14, /* the engine was cancelled */
    KRL_BAD_LOOK = 15   /* a look has a mistake, in the line that `krl_result_line` gives */
};

/* A code in words, such as "no such method". */
KRL_API const char* krl_code_text(krl_code code);

/* ---- Pictures ------------------------------------------------------------------------------------------ */

/* The bytes of a pixel in address order. Colour is not premultiplied by alpha. */
enum { KRL_BGRA = 0, KRL_RGBA = 1 };

/* A picture over memory of the caller's, of at most 2^31 - 1 bytes without padding.
 *
 * Methods work in BGRA without padding. A picture of that form is used where it is. One of RGBA that the
 * method rewrites is reordered in place before the call and back after it. Others are copied for the call,
 * and copied back if the method changes them. Where the method works per pixel, all this is done in parts
 * that fit into the processor's cache. Bytes between the rows are never written. Memory that a method only
 * reads is never written either: it may be read only, or in use by other threads. */
typedef struct krl_picture {
    size_t size;         /* sizeof(krl_picture) */
    void* pixels;        /* first byte of the first row */
    int32_t width;       /* pixels in a row, 1 or more */
    int32_t height;      /* rows, 1 or more */
    ptrdiff_t row_bytes; /* bytes from one row to the next, width * 4 or more */
    int32_t order;       /* KRL_BGRA or KRL_RGBA */
} krl_picture;

/* ---- Values -------------------------------------------------------------------------------------------- */

/* Kinds of values, and of what an argument takes. */
enum {
    KRL_KIND_NOTHING = 0,
    KRL_KIND_INTEGER = 1,
    KRL_KIND_REAL = 2,   /* as an argument it takes integers too */
    KRL_KIND_SYMBOL = 3, /* a name that stands for itself; letter case does not count */
    KRL_KIND_TEXT = 4,
    KRL_KIND_COLOUR = 5,
    KRL_KIND_POINT = 6,
    KRL_KIND_LIST = 7,
    KRL_KIND_PROPERTY_LIST = 8, /* values under keys, in order; keys are mostly symbols */
    KRL_KIND_PICTURE = 9,
    KRL_KIND_PICTURE_NAME = 10, /* `image("logo.png")` in an example; to call, put a picture in its place */
    KRL_KIND_COLOUR_LIST = 11,  /* of an argument: a property list of colours under numbers */
    KRL_KIND_ANY = 12           /* of an argument: a tree that the method's documentation describes */
};

/* A value of any kind. NULL is no value; functions that read one report it. */
typedef struct krl_value krl_value;

/* Makers. Each gives a value to free, or NULL without memory or for a NULL argument. */
KRL_API krl_value* krl_nothing(void);
KRL_API krl_value* krl_integer(int32_t number);
KRL_API krl_value* krl_real(double number);
KRL_API krl_value* krl_symbol(const char* name); /* without its `#` */
KRL_API krl_value* krl_text(const char* text);
KRL_API krl_value* krl_colour(uint8_t red, uint8_t green, uint8_t blue);
KRL_API krl_value* krl_point(int32_t x, int32_t y);
KRL_API krl_value* krl_list(void);
KRL_API krl_value* krl_property_list(void);
/* The pixels stay the caller's and are used where they are by calls that take the value. NULL also for a
 * picture that cannot be. */
KRL_API krl_value* krl_picture_value(const krl_picture* picture);
/* A copy. New pictures that a method made are shared by all copies, and freed with the last. */
KRL_API krl_value* krl_copy(const krl_value* value);
/* NULL is fine. */
KRL_API void krl_value_free(krl_value* value);

/* Adds `item` to the end of a list, or under `key` to the end of a property list. Takes `item` and `key`
 * over, even where it fails, except that no value can be two of the three. Lists are at most 64 deep. */
KRL_API krl_code krl_list_add(krl_value* list, krl_value* item);
KRL_API krl_code krl_property_list_add(krl_value* list, krl_value* key, krl_value* item);

/* The value that a text writes as scripts do: `40`, `1.5`, `#RGB`, `"text"`, `rgb(255, 128, 0)`, `point(4,
 * 8)`,
 * `[1, 2]`, `[#count: 6, #angle: 15.0]`, `[:]`, `VOID`. To be freed; NULL if it writes none, and then
 * `problem`, unless it is NULL, says why in at most `problem_size` bytes with the zero. */
KRL_API krl_value* krl_parse(const char* text, char* problem, size_t problem_size);
/* The value that a text writes for an argument of a method, as `krl_apply` reads it: a length, a point or a
 * region may be in percent of a picture of this size, such as `10%`. Also for `mix`, `region` and `feather`.
 * Otherwise as `krl_parse`. */
KRL_API krl_value* krl_parse_argument(const char* method, const char* argument, const char* text,
                                      int32_t width, int32_t height, char* problem, size_t problem_size);
/* Writes the value as such a text, as much as fits into `text_size` bytes with the zero. Gives the bytes of
 * the whole text without the zero; `text` may be NULL to ask for them. 0 without a value. */
KRL_API size_t krl_write(const krl_value* value, char* text, size_t text_size);

/* Readers. KRL_WRONG_KIND, and nothing written, for a value of another kind. */
KRL_API int32_t krl_kind(const krl_value* value); /* KRL_KIND_NOTHING for NULL */
KRL_API krl_code krl_get_integer(const krl_value* value, int32_t* number);
KRL_API krl_code krl_get_real(const krl_value* value, double* number); /* of an integer too */
KRL_API krl_code krl_get_colour(const krl_value* value, uint8_t* red, uint8_t* green, uint8_t* blue);
KRL_API krl_code krl_get_point(const krl_value* value, int32_t* x, int32_t* y);
/* The name of a symbol or of a picture by name, or a text; NULL for other kinds. Lives as long as the value.
 */
KRL_API const char* krl_get_text(const krl_value* value);
/* `picture->size` is set by the caller. The pixels live as long as the value or a copy of it. */
KRL_API krl_code krl_get_picture(const krl_value* value, krl_picture* picture);
/* Entries of a list or property list; 0 for other kinds. */
KRL_API size_t krl_count(const krl_value* list);
/* Entry or key `index`, from 0; NULL where there is none. Lives as long as the list, until something is
 * added. */
KRL_API const krl_value* krl_item(const krl_value* list, size_t index);
KRL_API const krl_value* krl_key(const krl_value* list, size_t index);
/* The entry under the symbol `key`, letter case aside; NULL where there is none. */
KRL_API const krl_value* krl_find(const krl_value* list, const char* key);

/* ---- Engines ------------------------------------------------------------------------------------------- */

/* What methods run on. There may be any number; each serves one call at a time. */
typedef struct krl_engine krl_engine;

/* The most bands that an engine takes. */
#define KRL_MOST_BANDS 1024

/* `bands` is the number of threads that share the work of one call, 1 to KRL_MOST_BANDS; 0 is automatic: one
 * for each processor, or fewer for a picture so small that starting them would take longer. Results do not
 * depend on the bands, except for the few methods with the flag KRL_DEPENDS_ON_BANDS: automatically these run
 * on one band, so that automatic results are the same on every machine; with a number they run on as many as
 * it says. To be freed; NULL for another number or without memory. */
KRL_API krl_engine* krl_engine_new(int32_t bands);
/* With `keep` 1 the engine keeps the working memory of a call for the next one, which makes calls on pictures
 * of one size that follow each other faster, such as those of a film; 0, as at the start, gives it back. What
 * is kept is at most KRL_KEPT_PICTURES times as large as the last picture. KRL_BAD_USE for no engine or
 * another number. */
#define KRL_KEPT_PICTURES 16
KRL_API krl_code krl_engine_keep_memory(krl_engine* engine, int32_t keep);
/* NULL is fine. Results and pictures outlive it; the threads of calls stay until the last engine goes. */
KRL_API void krl_engine_free(krl_engine* engine);

/* Ends the call that runs on the engine soon, and every later one at once, with KRL_CANCELLED, until
 * `krl_engine_resume`. Both can be called from any thread while a call runs; NULL is fine. A signal handler
 * may call them. */
KRL_API void krl_engine_cancel(krl_engine* engine);
KRL_API void krl_engine_resume(krl_engine* engine);

/* ---- Calls --------------------------------------------------------------------------------------------- */

/* An argument of a call; this structure does not grow. */
typedef struct krl_argument {
    const char* name;       /* NULL for the next in order, counted among those without a name */
    const krl_value* value; /* NULL leaves the argument out */
} krl_argument;

/* What a call came to. */
typedef struct krl_result krl_result;

/* Calls `method`, by its name with or without the prefix `krlImage`, letter case aside, on `picture`.
 *
 * `picture` is rewritten in place; NULL for methods that work on none. `arguments` has `count` entries. What
 * is left out takes the value of the method's example. Wrong arguments are reported before the picture is
 * touched. A call that ends with KRL_METHOD_FAILED, KRL_OUT_OF_MEMORY or KRL_CANCELLED may leave it partly
 * rewritten. If the system refuses a thread, the call does its work on fewer, with the same bytes. `result`,
 * unless it is NULL, becomes a result to free, of a failed call too; NULL only without memory. */
KRL_API krl_code krl_call(krl_engine* engine, const krl_picture* picture, const char* method,
                          const krl_argument* arguments, size_t count, krl_result** result);
/* The same for a call as a text: "invert", "brightness(40, #RGB)" or with names
 * "brightness(colourOrAlpha: #Alpha)".
 *
 * However it is called, a method that rewrites the picture also takes, by name, what says where and how much:
 * `mix`, a share of the change from 0 to 1; `mask`, a picture of the same size whose brightness is the share;
 * `region`, a list of left, top, right and bottom outside of which nothing changes; and `feather`, the pixels
 * inside the region's border over which the change grows to full. In a text, lengths, points and regions may
 * be in percent: "vignette(blur: 10%, mix: 0.6)". */
KRL_API krl_code krl_apply(krl_engine* engine, const krl_picture* picture, const char* call,
                           krl_result** result);

/* The same for a result in another picture: `to` becomes what the call makes of a copy of `from`. Both have
 * the same size, and each its own order and rows; they may share memory. `from` is only read, unless it
 * shares memory with `to`. Methods with the flag KRL_WORKS_PER_PIXEL read and write the pixels once for all
 * this. */
KRL_API krl_code krl_call_into(krl_engine* engine, const krl_picture* from, const krl_picture* to,
                               const char* method, const krl_argument* arguments, size_t count,
                               krl_result** result);
KRL_API krl_code krl_apply_into(krl_engine* engine, const krl_picture* from, const krl_picture* to,
                                const char* call, krl_result** result);

/* NULL is fine, for all of these: it is the result of a call without memory. */
KRL_API void krl_result_free(krl_result* result);
KRL_API krl_code krl_result_code(const krl_result* result);
/* What happened in words for people, such as "brightness: brightnessInt: expected an integer, got #a"; empty
 * for KRL_OK. */
KRL_API const char* krl_result_message(const krl_result* result);
/* The text that scripts get in `error`, letter for letter; empty for KRL_OK, and for mistakes that a script
 * cannot make or that the method lets pass there. */
KRL_API const char* krl_result_error(const krl_result* result);
/* The entries of the result, a property list, or for a method with the flag KRL_MAKES_PICTURE_LIST a list of
 * pictures; empty for most methods and after a failure. Its pictures have the order of the picture that the
 * method was called on, KRL_BGRA without one, and live until the result is freed: `krl_copy` keeps one. */
KRL_API const krl_value* krl_result_value(const krl_result* result);

/* ---- Looks ----------------------------------------------------------------------------------------------
 */

/* A chain of calls with a title, a description and parameters; docs/looks.md describes its text. */
typedef struct krl_look krl_look;

/* Reads a look from its text, to be freed. On failure `look` becomes NULL, and the code is KRL_BAD_LOOK:
 * `krl_result_message` says what is wrong, `krl_result_line` in which line. `result` may be NULL. */
KRL_API krl_code krl_look_read(const char* text, krl_look** look, krl_result** result);
/* A look without calls, to write one; NULL without memory. */
KRL_API krl_look* krl_look_new(void);
/* NULL is fine. */
KRL_API void krl_look_free(krl_look* look);

/* Strings that a look gives live until the look is changed or freed; those for NULL are empty. */
KRL_API const char* krl_look_title(const krl_look* look);
KRL_API const char* krl_look_description(const krl_look* look);
KRL_API size_t krl_look_call_count(const krl_look* look);
KRL_API const char* krl_look_call(const krl_look* look, size_t index); /* NULL beyond the last */

/* A parameter of a look. Values are texts as `krl_parse` reads them, where a length may be in percent. */
typedef struct krl_parameter_info {
    size_t size;
    const char* name;
    const char* meaning;  /* may be empty */
    const char* value;    /* what calls take now */
    const char* standard; /* what they take unless it is set */
    const char* from;     /* a range that is sensible to try; both are empty where there is none */
    const char* to;
    const struct krl_argument_info* argument; /* the first argument that it is the value of, or NULL */
} krl_parameter_info;

KRL_API size_t krl_look_parameter_count(const krl_look* look);
/* `info->size` is set by the caller. KRL_BAD_USE beyond the last. */
KRL_API krl_code krl_look_parameter(const krl_look* look, size_t index, krl_parameter_info* info);
/* Gives a parameter another value, such as "80", "12%" or "#RGB". KRL_BAD_LOOK, and nothing changed, if there
 * is no such parameter or a call does not take the value. */
KRL_API krl_code krl_look_set(krl_look* look, const char* name, const char* value, krl_result** result);

/* Names of pictures that the look's calls take, as in `image("paper.png")`; NULL beyond the last. */
KRL_API size_t krl_look_picture_count(const krl_look* look);
KRL_API const char* krl_look_picture_name(const krl_look* look, size_t index);
/* Sets the picture of a name. Its pixels stay the caller's, and are read when the look is applied. */
KRL_API krl_code krl_look_set_picture(krl_look* look, const char* name, const krl_picture* picture);

/* To write a look. KRL_BAD_LOOK, and nothing changed, for a text that the look cannot hold. A parameter's
 * `from`, `to` and `meaning` may be NULL; it has to be added before the calls that take it. */
KRL_API krl_code krl_look_set_title(krl_look* look, const char* title, krl_result** result);
KRL_API krl_code krl_look_set_description(krl_look* look, const char* description, krl_result** result);
KRL_API krl_code krl_look_add_parameter(krl_look* look, const char* name, const char* value, const char* from,
                                        const char* to, const char* meaning, krl_result** result);
KRL_API krl_code krl_look_add_call(krl_look* look, const char* call, krl_result** result);
/* Writes the look's text, as `krl_write` does. Parameters have their standard values. */
KRL_API size_t krl_look_write(const krl_look* look, char* text, size_t text_size);

/* Makes the look's calls in turn on `picture`, which is rewritten in place. If a call makes a new picture,
 * those after it work on that one, and the result's value has it under `#picture`. Calls that follow each
 * other and have the flag KRL_WORKS_PER_PIXEL are made together, part by part of the picture. A failure may
 * leave what calls before it have made: KRL_METHOD_FAILED, with the line if the look was read from a text. */
KRL_API krl_code krl_look_apply(krl_engine* engine, const krl_look* look, const krl_picture* picture,
                                krl_result** result);

/* The same into another picture, as `krl_call_into`. */
KRL_API krl_code krl_look_apply_into(krl_engine* engine, const krl_look* look, const krl_picture* from,
                                     const krl_picture* to, krl_result** result);

/* The line of a look that is wrong or whose call failed, from 1; 0 for other results. */
KRL_API int32_t krl_result_line(const krl_result* result);

/* Looks that come with the library, by index: their names and texts; NULL beyond the last. */
KRL_API size_t krl_shipped_look_count(void);
KRL_API const char* krl_shipped_look_name(size_t index);
KRL_API const char* krl_shipped_look_text(size_t index);

/* ---- Catalogue ----------------------------------------------------------------------------------------- */

/* Flags of a method. */
enum {
    KRL_REWRITES_PICTURE = 1,         /* changes the picture that it is called on */
    KRL_MAKES_PICTURE = 2,            /* the result holds a new picture, or several */
    KRL_MAKES_PICTURE_LIST = 4,       /* the result is a list of new pictures */
    KRL_NEEDS_SECOND_PICTURE = 8,     /* has an argument that is a picture */
    KRL_DEPENDS_ON_BANDS = 16,        /* with more than one band the result differs; see `krl_engine_new` */
    KRL_MANAGES_ENGINE = 32,          /* for scripts alone: cannot be called here */
    KRL_INERT = 64,                   /* checks its arguments and does nothing */
    KRL_WORKS_WITHOUT_ENGINE = 128,   /* scripts may call it before an engine is made */
    KRL_CHANGES_SECOND_PICTURE = 256, /* changes its first argument that is a picture, and not the one that
                                         it is called on */
    KRL_WORKS_PER_PIXEL = 512 /* a pixel's outcome depends only on that pixel and on those at its place
                                 in second pictures: any part of a picture can be worked on alone */
};

/* One argument of a method. */
typedef struct krl_argument_info {
    size_t size;
    const char* name;
    const char* meaning; /* may be empty */
    const char* example; /* as a text of `krl_parse`, points for a picture of 960 by 640 */
    int32_t kind;        /* KRL_KIND_... */
    /* Of numbers: a range that is sensible to try; the limits beyond which a value counts as the limit,
     * infinite where there are none; and the value at which the method changes nothing, NaN where there is
     * none. */
    double from, to, least, most, neutral;
    const char* const* choices; /* of symbols: those that the argument takes, without `#` */
    size_t choice_count;
} krl_argument_info;

/* An entry of a method's result. */
typedef struct krl_entry_info {
    size_t size;
    const char* key;
    const char* meaning;
} krl_entry_info;

/* A method. */
typedef struct krl_method_info {
    size_t size;
    const char* name;        /* such as "brightness" */
    const char* script_name; /* such as "krlImageBrightness" */
    const char* summary;     /* one sentence */
    const char* family;      /* name of its family */
    uint32_t flags;
    const krl_argument_info* const* arguments; /* in order */
    size_t argument_count;
    const krl_entry_info* const* entries; /* of the result */
    size_t entry_count;
} krl_method_info;

/* Methods that readers find under one heading. */
typedef struct krl_family_info {
    size_t size;
    const char* name;    /* such as "tone" */
    const char* heading; /* such as "Tone" */
    const krl_method_info* const* methods;
    size_t method_count;
} krl_family_info;

/* Every family, in reading order. */
typedef struct krl_catalogue_info {
    size_t size;
    const krl_family_info* const* families;
    size_t family_count;
} krl_catalogue_info;

/* The catalogue, read only, for as long as the program runs. NULL without memory. */
KRL_API const krl_catalogue_info* krl_catalogue(void);
/* A method by its name, as `krl_call` takes it; NULL where there is none. */
KRL_API const krl_method_info* krl_find_method(const char* name);
/* The value of an argument's example for a picture of this size: what a call takes where it is left out. To
 * be freed; NULL for an unknown method or argument. Pictures are of KRL_KIND_PICTURE_NAME. */
KRL_API krl_value* krl_example(const char* method, size_t argument, int32_t width, int32_t height);

#ifdef __cplusplus
}
#endif

#endif
