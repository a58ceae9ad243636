/* Prints what a program in C finds of one effect, $1: its family and arguments by a walk of the catalogue,
 * and what a call of it makes of one pixel. */
#include <stdio.h>
#include <string.h>

#include "krlimage.h"

static void describe(const krl_family_info* family, const krl_method_info* method) {
    size_t i;
    printf("%s: %s, %s\n", family->heading, method->name, method->script_name);
    for (i = 0; i < method->argument_count; ++i) {
        const krl_argument_info* argument = method->arguments[i];
        printf("%s %g..%g, %s by example\n", argument->name, argument->from, argument->to, argument->example);
    }
}

int main(int count, char** words) {
    uint8_t pixel[4] = {30, 20, 10, 255};
    krl_picture picture = {sizeof(krl_picture), pixel, 1, 1, 4, KRL_BGRA};
    const krl_catalogue_info* catalogue = krl_catalogue();
    krl_engine* engine = krl_engine_new(1);
    krl_code code;
    size_t i, j;
    if (count != 2 || !catalogue) return 2;
    for (i = 0; i < catalogue->family_count; ++i)
        for (j = 0; j < catalogue->families[i]->method_count; ++j)
            if (strcmp(catalogue->families[i]->methods[j]->name, words[1]) == 0)
                describe(catalogue->families[i], catalogue->families[i]->methods[j]);
    code = krl_call(engine, &picture, words[1], NULL, 0, NULL);
    printf("%s %d %d %d %d\n", krl_code_text(code), pixel[0], pixel[1], pixel[2], pixel[3]);
    krl_engine_free(engine);
    return code == KRL_OK ? 0 : 1;
}
