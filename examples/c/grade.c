/* Effects on a picture in memory: a ramp of orange, lightened and softened, as a PPM file. */
#include <krlimage.h>
#include <stdio.h>

enum { WIDTH = 320, HEIGHT = 200 };

static uint8_t pixels[HEIGHT][WIDTH][4];

int main(int count, char** words) {
    const char* calls[] = {"brightness(40, #RGB)", "fastGaussianBlur(#radius: 6)", "vignette"};
    krl_picture picture = {sizeof picture, pixels, WIDTH, HEIGHT, WIDTH * 4, KRL_RGBA};
    krl_engine* engine = krl_engine_new(0);
    FILE* file = count == 2 ? fopen(words[1], "wb") : NULL;
    if (!engine || !file) return 2;
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x) {
            const uint8_t orange[] = {(uint8_t)(x * 255 / WIDTH), (uint8_t)(x * 128 / WIDTH), 40, 255};
            for (int channel = 0; channel < 4; ++channel) pixels[y][x][channel] = orange[channel];
        }
    for (size_t i = 0; i < sizeof calls / sizeof *calls; ++i) {
        krl_result* result = NULL;
        if (krl_apply(engine, &picture, calls[i], &result) != KRL_OK)
            fprintf(stderr, "grade: %s\n", krl_result_message(result));
        krl_result_free(result);
    }
    krl_engine_free(engine);
    fprintf(file, "P6\n%d %d\n255\n", WIDTH, HEIGHT);
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x) fwrite(pixels[y][x], 1, 3, file);
    return fclose(file) == 0 ? 0 : 1;
}
