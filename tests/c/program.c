/* A program in C99 that uses all of the interface; it ends with 0 if everything was as expected. */
#include <math.h>
#include <stdio.h>
#include <string.h>

#include "krlimage.h"

static int failures = 0;

static void check(int holds, const char* what, int line) {
    if (holds) return;
    ++failures;
    fprintf(stderr, "program.c:%d: %s\n", line, what);
}
#define CHECK(condition) check((condition), #condition, __LINE__)

enum { WIDTH = 6, HEIGHT = 4 };

/* A picture whose byte `i` is `i`. */
static krl_picture picture_over(uint8_t* pixels, int32_t order) {
    krl_picture picture;
    int i;
    for (i = 0; i < WIDTH * HEIGHT * 4; ++i) pixels[i] = (uint8_t)i;
    picture.size = sizeof picture;
    picture.pixels = pixels;
    picture.width = WIDTH;
    picture.height = HEIGHT;
    picture.row_bytes = WIDTH * 4;
    picture.order = order;
    return picture;
}

static void use_version(void) {
    CHECK(krl_interface_version() == KRL_INTERFACE_VERSION);
    CHECK(krl_interface_version() / 1000 == KRL_INTERFACE_MAJOR);
    CHECK(KRL_INTERFACE_VERSION % 1000 == KRL_INTERFACE_MINOR);
    CHECK(strchr(krl_release(), '.') != NULL);
    CHECK(strcmp(krl_code_text(KRL_NO_SUCH_METHOD), "no such method") == 0);
}

static void use_plain_values(void) {
    int32_t number = 0, x = 0, y = 0;
    double real = 0;
    uint8_t red = 0, green = 0, blue = 0;
    krl_value* integer = krl_integer(-7);
    krl_value* half = krl_real(0.5);
    krl_value* symbol = krl_symbol("RGB");
    krl_value* text = krl_text("words");
    krl_value* colour = krl_colour(1, 2, 3);
    krl_value* point = krl_point(8, 9);
    krl_value* nothing = krl_nothing();
    CHECK(krl_kind(integer) == KRL_KIND_INTEGER && krl_get_integer(integer, &number) == KRL_OK &&
          number == -7);
    CHECK(krl_kind(half) == KRL_KIND_REAL && krl_get_real(half, &real) == KRL_OK && real == 0.5);
    CHECK(krl_get_real(integer, &real) == KRL_OK && real == -7);
    CHECK(krl_kind(symbol) == KRL_KIND_SYMBOL && strcmp(krl_get_text(symbol), "RGB") == 0);
    CHECK(krl_kind(text) == KRL_KIND_TEXT && strcmp(krl_get_text(text), "words") == 0);
    CHECK(krl_kind(colour) == KRL_KIND_COLOUR);
    CHECK(krl_get_colour(colour, &red, &green, &blue) == KRL_OK && red == 1 && green == 2 && blue == 3);
    CHECK(krl_kind(point) == KRL_KIND_POINT && krl_get_point(point, &x, &y) == KRL_OK && x == 8 && y == 9);
    CHECK(krl_kind(nothing) == KRL_KIND_NOTHING);
    krl_value_free(integer);
    krl_value_free(half);
    krl_value_free(symbol);
    krl_value_free(text);
    krl_value_free(colour);
    krl_value_free(point);
    krl_value_free(nothing);
}

static void use_lists(void) {
    char text[64], problem[64];
    krl_value* list = krl_list();
    krl_value* properties = krl_property_list();
    krl_value* copy;
    krl_value* parsed;
    CHECK(krl_list_add(list, krl_integer(4)) == KRL_OK);
    CHECK(krl_list_add(list, krl_symbol("a")) == KRL_OK);
    CHECK(krl_property_list_add(properties, krl_symbol("items"), list) == KRL_OK);
    CHECK(krl_kind(properties) == KRL_KIND_PROPERTY_LIST && krl_count(properties) == 1);
    CHECK(krl_kind(krl_item(properties, 0)) == KRL_KIND_LIST);
    CHECK(strcmp(krl_get_text(krl_key(properties, 0)), "items") == 0);
    CHECK(krl_find(properties, "ITEMS") == krl_item(properties, 0));
    copy = krl_copy(properties);
    krl_value_free(properties);
    CHECK(krl_write(copy, text, sizeof text) == 17);
    CHECK(strcmp(text, "[#items: [4, #a]]") == 0);
    parsed = krl_parse(text, problem, sizeof problem);
    CHECK(krl_write(parsed, NULL, 0) == 17 && problem[0] == '\0');
    CHECK(krl_parse("[4", problem, sizeof problem) == NULL && problem[0] != '\0');
    krl_value_free(parsed);
    parsed = krl_parse_argument("vignette", "blur", "10%", 300, 200, problem, sizeof problem);
    CHECK(krl_write(parsed, text, sizeof text) == 2 && strcmp(text, "20") == 0);
    krl_value_free(parsed);
    krl_value_free(copy);
}

static void use_calls(krl_engine* engine) {
    uint8_t pixels[WIDTH * HEIGHT * 4];
    krl_picture picture = picture_over(pixels, KRL_RGBA);
    krl_value* amount = krl_integer(40);
    krl_argument named[1];
    krl_result* result = NULL;
    named[0].name = "brightnessInt";
    named[0].value = amount;
    CHECK(krl_call(engine, &picture, "brightness", named, 1, &result) == KRL_OK);
    CHECK(krl_result_code(result) == KRL_OK && *krl_result_message(result) == '\0');
    CHECK(krl_count(krl_result_value(result)) == 0);
    CHECK(pixels[0] == 40 && pixels[3] == 3 && pixels[4] == 44);
    krl_result_free(result);
    CHECK(krl_call(engine, &picture, "brightness", named, 1, NULL) == KRL_OK && pixels[0] == 80);
    CHECK(krl_apply(engine, &picture, "brightness(-80, #RGB)", NULL) == KRL_OK && pixels[0] == 0);

    CHECK(krl_apply(engine, &picture, "brightness(#brightnessInt: #a)", &result) == KRL_WRONG_KIND);
    CHECK(krl_result_code(result) == KRL_WRONG_KIND);
    CHECK(strstr(krl_result_message(result), "expected an integer") != NULL);
    CHECK(strcmp(krl_result_error(result), "Brightness input failure (Image)") == 0);
    krl_result_free(result);
    krl_value_free(amount);
}

static void use_pictures(krl_engine* engine) {
    uint8_t pixels[WIDTH * HEIGHT * 4], others[WIDTH * HEIGHT * 4];
    krl_picture picture = picture_over(pixels, KRL_BGRA), other = picture_over(others, KRL_RGBA), half;
    krl_value* second = krl_picture_value(&other);
    krl_value* kept;
    krl_argument argument;
    krl_result* result = NULL;
    argument.name = NULL;
    argument.value = second;
    CHECK(krl_kind(second) == KRL_KIND_PICTURE);
    CHECK(krl_call(engine, &picture, "composite", &argument, 1, NULL) == KRL_OK);
    krl_value_free(second);

    half.size = sizeof half;
    CHECK(krl_apply(engine, &picture, "halfSize()", &result) == KRL_OK);
    kept = krl_copy(krl_find(krl_result_value(result), "frame"));
    krl_result_free(result);
    CHECK(krl_get_picture(kept, &half) == KRL_OK);
    CHECK(half.width == WIDTH / 2 && half.height == HEIGHT / 2 && half.row_bytes == WIDTH * 2);
    CHECK(krl_apply(engine, &half, "invert", NULL) == KRL_OK);
    krl_value_free(kept);
}

static void use_calls_into_other_pictures(krl_engine* engine) {
    uint8_t pixels[WIDTH * HEIGHT * 4], others[WIDTH * HEIGHT * 4], expected[WIDTH * HEIGHT * 4];
    krl_picture picture = picture_over(pixels, KRL_BGRA), other = picture_over(others, KRL_BGRA);
    krl_picture inverted = picture_over(expected, KRL_BGRA);
    krl_look* look = krl_look_new();
    CHECK(krl_apply(engine, &inverted, "invert", NULL) == KRL_OK);
    CHECK(krl_call_into(engine, &picture, &other, "invert", NULL, 0, NULL) == KRL_OK);
    CHECK(memcmp(others, expected, sizeof others) == 0 && pixels[1] == 1);
    CHECK(krl_apply_into(engine, &picture, &other, "brightness(0)", NULL) == KRL_OK);
    CHECK(memcmp(others, pixels, sizeof others) == 0);
    CHECK(krl_look_add_call(look, "invert", NULL) == KRL_OK);
    CHECK(krl_look_apply_into(engine, look, &picture, &other, NULL) == KRL_OK);
    CHECK(memcmp(others, expected, sizeof others) == 0 && pixels[1] == 1);
    krl_look_free(look);
}

static void use_catalogue(void) {
    const krl_catalogue_info* catalogue = krl_catalogue();
    size_t f, m, a, e, methods = 0, choices = 0;
    CHECK(catalogue->size == sizeof *catalogue);
    for (f = 0; f < catalogue->family_count; ++f) {
        const krl_family_info* family = catalogue->families[f];
        CHECK(family->size == sizeof *family && *family->name != '\0' && *family->heading != '\0');
        for (m = 0; m < family->method_count; ++m) {
            const krl_method_info* method = family->methods[m];
            CHECK(method->size == sizeof *method && strcmp(method->family, family->name) == 0);
            CHECK(krl_find_method(method->name) == method && krl_find_method(method->script_name) == method);
            CHECK(*method->summary != '\0');
            for (a = 0; a < method->argument_count; ++a) {
                const krl_argument_info* argument = method->arguments[a];
                krl_value* example = krl_example(method->name, a, 960, 640);
                char text[4096];
                CHECK(argument->size == sizeof *argument && *argument->name != '\0');
                CHECK(argument->meaning != NULL && argument->least <= argument->most);
                CHECK(argument->from <= argument->to);
                CHECK(argument->kind == KRL_KIND_SYMBOL
                          ? argument->choice_count > 0 && argument->choices[0] != NULL
                          : argument->choice_count == 0);
                CHECK(isnan(argument->neutral) || argument->neutral >= argument->least);
                if (argument->kind != KRL_KIND_ANY) {
                    krl_write(example, text, sizeof text);
                    CHECK(strcmp(text, argument->example) == 0);
                }
                choices += argument->choice_count;
                krl_value_free(example);
            }
            for (e = 0; e < method->entry_count; ++e)
                CHECK(method->entries[e]->size == sizeof *method->entries[e] && *method->entries[e]->key &&
                      *method->entries[e]->meaning);
            ++methods;
        }
    }
    CHECK(methods > 100 && choices > 100);
    CHECK(krl_find_method("Brightness")->flags == (KRL_REWRITES_PICTURE | KRL_WORKS_PER_PIXEL));
    CHECK(krl_find_method("halfSize")->flags == (KRL_MAKES_PICTURE | KRL_DEPENDS_ON_BANDS));
    CHECK(krl_find_method("broadcastSplit")->flags == (KRL_MAKES_PICTURE | KRL_MAKES_PICTURE_LIST));
    CHECK(krl_find_method("composite")->flags ==
          (KRL_REWRITES_PICTURE | KRL_NEEDS_SECOND_PICTURE | KRL_WORKS_PER_PIXEL));
    CHECK(krl_find_method("reinterlace")->flags ==
          (KRL_NEEDS_SECOND_PICTURE | KRL_CHANGES_SECOND_PICTURE | KRL_DEPENDS_ON_BANDS));
    CHECK(krl_find_method("quit")->flags == KRL_MANAGES_ENGINE);
    CHECK(krl_find_method("stars")->flags & KRL_INERT);
    CHECK(krl_find_method("RGBtoHSV")->flags == KRL_WORKS_WITHOUT_ENGINE);
}

static void use_cancelling(krl_engine* engine) {
    uint8_t pixels[WIDTH * HEIGHT * 4];
    krl_picture picture = picture_over(pixels, KRL_RGBA);
    krl_engine_cancel(engine);
    CHECK(krl_apply(engine, &picture, "invert", NULL) == KRL_CANCELLED);
    krl_engine_resume(engine);
    CHECK(krl_apply(engine, &picture, "invert", NULL) == KRL_OK);
}

static void use_looks(krl_engine* engine) {
    static const char text[] =
        "krlimage look 1\n"
        "title: Warm\n"
        "description: A test.\n"
        "parameter levels: 40 from 0 to 80 \"levels to add\"\n"
        "brightness($levels, #RGB)\n";
    uint8_t pixels[WIDTH * HEIGHT * 4], expected[WIDTH * HEIGHT * 4];
    krl_picture picture = picture_over(pixels, KRL_BGRA), other = picture_over(expected, KRL_BGRA);
    krl_parameter_info info;
    krl_look *look = NULL, *made = krl_look_new();
    krl_result* result = NULL;
    char written[400];
    info.size = sizeof info;
    CHECK(krl_look_read(text, &look, NULL) == KRL_OK && look != NULL);
    CHECK(strcmp(krl_look_title(look), "Warm") == 0 && strcmp(krl_look_description(look), "A test.") == 0);
    CHECK(krl_look_call_count(look) == 1 && krl_look_call(look, 1) == NULL);
    CHECK(strcmp(krl_look_call(look, 0), "brightness($levels, #RGB)") == 0);
    CHECK(krl_look_parameter_count(look) == 1 && krl_look_parameter(look, 0, &info) == KRL_OK);
    CHECK(strcmp(info.name, "levels") == 0 && strcmp(info.to, "80") == 0 && info.argument != NULL);
    CHECK(krl_look_set(look, "levels", "60", NULL) == KRL_OK);
    CHECK(krl_look_apply(engine, look, &picture, &result) == KRL_OK && krl_result_line(result) == 0);
    krl_result_free(result);
    CHECK(krl_apply(engine, &other, "brightness(60, #RGB)", NULL) == KRL_OK);
    CHECK(memcmp(pixels, expected, sizeof pixels) == 0);

    CHECK(krl_look_set_title(made, "Warm", NULL) == KRL_OK);
    CHECK(krl_look_set_description(made, "A test.", NULL) == KRL_OK);
    CHECK(krl_look_add_parameter(made, "levels", "40", "0", "80", "levels to add", NULL) == KRL_OK);
    CHECK(krl_look_add_call(made, "brightness($levels, #RGB)", NULL) == KRL_OK);
    CHECK(krl_look_picture_count(made) == 0 && krl_look_picture_name(made, 0) == NULL);
    CHECK(krl_look_set_picture(made, "paper", &picture) == KRL_OK);
    CHECK(krl_look_write(made, written, sizeof written) < sizeof written);
    krl_look_free(look);
    CHECK(krl_look_read(written, &look, &result) == KRL_OK);
    krl_result_free(result);
    krl_look_free(look);
    krl_look_free(made);
    CHECK(krl_shipped_look_count() > 0 && krl_shipped_look_name(0) != NULL);
    CHECK(krl_look_read(krl_shipped_look_text(0), &look, NULL) == KRL_OK);
    krl_look_free(look);
}

int main(void) {
    krl_engine* engine = krl_engine_new(0);
    CHECK(engine != NULL);
    use_version();
    use_plain_values();
    use_lists();
    use_calls(engine);
    use_pictures(engine);
    use_calls_into_other_pictures(engine);
    use_catalogue();
    use_looks(engine);
    CHECK(krl_engine_keep_memory(engine, 0) == KRL_OK);
    use_cancelling(engine);
    krl_engine_free(engine);
    return failures != 0;
}
