#pragma once

#if defined(KRL_WITH_VIPS)

#include <gmodule.h>
#include <vips/vips.h>

#include <atomic>

/// libvips is loaded when a picture needs it: with the libraries behind it, that takes longer than most
/// commands. In this namespace, its functions have the names that they have outside.
namespace krl::player {

/// The library, as `dlopen` gives it. Throws `PictureError` where it cannot be loaded.
void* vipsLibrary();
/// A function of the library or of those behind it. Throws `PictureError`.
void* vipsSymbol(const char* name);

/// A function that is looked up when it is first called.
template <auto function>
class VipsFunction {
public:
    using Pointer = decltype(function);

    explicit constexpr VipsFunction(const char* name) : name_(name) {}
    VipsFunction(const VipsFunction&) = delete;
    VipsFunction& operator=(const VipsFunction&) = delete;

    operator Pointer() const {
        void* found = found_.load(std::memory_order_relaxed);
        if (!found) found_ = found = vipsSymbol(name_);
        return reinterpret_cast<Pointer>(found);
    }

private:
    const char* name_;
    mutable std::atomic<void*> found_ = nullptr;
};

inline const VipsFunction<&::g_free> g_free{"g_free"};
inline const VipsFunction<&::g_getenv> g_getenv{"g_getenv"};
inline const VipsFunction<&::g_markup_escape_text> g_markup_escape_text{"g_markup_escape_text"};
inline const VipsFunction<&::g_module_make_resident> g_module_make_resident{"g_module_make_resident"};
inline const VipsFunction<&::g_module_open> g_module_open{"g_module_open"};
inline const VipsFunction<&::g_object_ref> g_object_ref{"g_object_ref"};
inline const VipsFunction<&::g_object_unref> g_object_unref{"g_object_unref"};
inline const VipsFunction<&::g_setenv> g_setenv{"g_setenv"};
inline const VipsFunction<&::g_strdup> g_strdup{"g_strdup"};
inline const VipsFunction<&::g_strfreev> g_strfreev{"g_strfreev"};
inline const VipsFunction<&::g_type_check_instance_cast> g_type_check_instance_cast{
    "g_type_check_instance_cast"};
inline const VipsFunction<&::g_unsetenv> g_unsetenv{"g_unsetenv"};
inline const VipsFunction<&::vips_area_unref> vips_area_unref{"vips_area_unref"};
inline const VipsFunction<&::vips_array_double_newv> vips_array_double_newv{"vips_array_double_newv"};
inline const VipsFunction<&::vips_autorot> vips_autorot{"vips_autorot"};
inline const VipsFunction<&::vips_bandjoin> vips_bandjoin{"vips_bandjoin"};
inline const VipsFunction<&::vips_bandjoin2> vips_bandjoin2{"vips_bandjoin2"};
inline const VipsFunction<&::vips_bandjoin_const1> vips_bandjoin_const1{"vips_bandjoin_const1"};
inline const VipsFunction<&::vips_blob_get> vips_blob_get{"vips_blob_get"};
inline const VipsFunction<&::vips_block_untrusted_set> vips_block_untrusted_set{"vips_block_untrusted_set"};
inline const VipsFunction<&::vips_cache_set_max> vips_cache_set_max{"vips_cache_set_max"};
inline const VipsFunction<&::vips_cast_uchar> vips_cast_uchar{"vips_cast_uchar"};
inline const VipsFunction<&::vips_cast_ushort> vips_cast_ushort{"vips_cast_ushort"};
inline const VipsFunction<&::vips_colourspace> vips_colourspace{"vips_colourspace"};
inline const VipsFunction<&::vips_concurrency_set> vips_concurrency_set{"vips_concurrency_set"};
inline const VipsFunction<&::vips_copy> vips_copy{"vips_copy"};
inline const VipsFunction<&::vips_error_buffer> vips_error_buffer{"vips_error_buffer"};
inline const VipsFunction<&::vips_error_clear> vips_error_clear{"vips_error_clear"};
inline const VipsFunction<&::vips_extract_area> vips_extract_area{"vips_extract_area"};
inline const VipsFunction<&::vips_extract_band> vips_extract_band{"vips_extract_band"};
inline const VipsFunction<&::vips_flatten> vips_flatten{"vips_flatten"};
inline const VipsFunction<&::vips_foreign_find_load_source> vips_foreign_find_load_source{
    "vips_foreign_find_load_source"};
inline const VipsFunction<&::vips_format_sizeof> vips_format_sizeof{"vips_format_sizeof"};
inline const VipsFunction<&::vips_icc_transform> vips_icc_transform{"vips_icc_transform"};
inline const VipsFunction<&::vips_image_copy_memory> vips_image_copy_memory{"vips_image_copy_memory"};
inline const VipsFunction<&::vips_image_get_array_int> vips_image_get_array_int{"vips_image_get_array_int"};
inline const VipsFunction<&::vips_image_get_bands> vips_image_get_bands{"vips_image_get_bands"};
inline const VipsFunction<&::vips_image_get_blob> vips_image_get_blob{"vips_image_get_blob"};
inline const VipsFunction<&::vips_image_get_fields> vips_image_get_fields{"vips_image_get_fields"};
inline const VipsFunction<&::vips_image_get_format> vips_image_get_format{"vips_image_get_format"};
inline const VipsFunction<&::vips_image_get_height> vips_image_get_height{"vips_image_get_height"};
inline const VipsFunction<&::vips_image_get_int> vips_image_get_int{"vips_image_get_int"};
inline const VipsFunction<&::vips_image_get_n_pages> vips_image_get_n_pages{"vips_image_get_n_pages"};
inline const VipsFunction<&::vips_image_get_orientation> vips_image_get_orientation{
    "vips_image_get_orientation"};
inline const VipsFunction<&::vips_image_get_page_height> vips_image_get_page_height{
    "vips_image_get_page_height"};
inline const VipsFunction<&::vips_image_get_string> vips_image_get_string{"vips_image_get_string"};
inline const VipsFunction<&::vips_image_get_typeof> vips_image_get_typeof{"vips_image_get_typeof"};
inline const VipsFunction<&::vips_image_get_width> vips_image_get_width{"vips_image_get_width"};
inline const VipsFunction<&::vips_image_get_xres> vips_image_get_xres{"vips_image_get_xres"};
inline const VipsFunction<&::vips_image_get_yres> vips_image_get_yres{"vips_image_get_yres"};
inline const VipsFunction<&::vips_image_guess_interpretation> vips_image_guess_interpretation{
    "vips_image_guess_interpretation"};
inline const VipsFunction<&::vips_image_new> vips_image_new{"vips_image_new"};
inline const VipsFunction<&::vips_image_new_from_memory> vips_image_new_from_memory{
    "vips_image_new_from_memory"};
inline const VipsFunction<&::vips_image_new_from_source> vips_image_new_from_source{
    "vips_image_new_from_source"};
inline const VipsFunction<&::vips_image_set_array_int> vips_image_set_array_int{"vips_image_set_array_int"};
inline const VipsFunction<&::vips_image_set_blob_copy> vips_image_set_blob_copy{"vips_image_set_blob_copy"};
inline const VipsFunction<&::vips_image_set_int> vips_image_set_int{"vips_image_set_int"};
inline const VipsFunction<&::vips_image_set_string> vips_image_set_string{"vips_image_set_string"};
inline const VipsFunction<&::vips_image_write_to_memory> vips_image_write_to_memory{
    "vips_image_write_to_memory"};
inline const VipsFunction<&::vips_image_write_to_target> vips_image_write_to_target{
    "vips_image_write_to_target"};
inline const VipsFunction<&::vips_init> vips_init{"vips_init"};
inline const VipsFunction<&::vips_linear1> vips_linear1{"vips_linear1"};
inline const VipsFunction<&::vips_object_get_type> vips_object_get_type{"vips_object_get_type"};
inline const VipsFunction<&::vips_object_local_array> vips_object_local_array{"vips_object_local_array"};
inline const VipsFunction<&::vips_operation_block_set> vips_operation_block_set{"vips_operation_block_set"};
inline const VipsFunction<&::vips_premultiply> vips_premultiply{"vips_premultiply"};
inline const VipsFunction<&::vips_profile_load> vips_profile_load{"vips_profile_load"};
inline const VipsFunction<&::vips_rot> vips_rot{"vips_rot"};
inline const VipsFunction<&::vips_rotate> vips_rotate{"vips_rotate"};
inline const VipsFunction<&::vips_source_new_from_descriptor> vips_source_new_from_descriptor{
    "vips_source_new_from_descriptor"};
inline const VipsFunction<&::vips_target_new_to_descriptor> vips_target_new_to_descriptor{
    "vips_target_new_to_descriptor"};
inline const VipsFunction<&::vips_text> vips_text{"vips_text"};
inline const VipsFunction<&::vips_thumbnail_image> vips_thumbnail_image{"vips_thumbnail_image"};
inline const VipsFunction<&::vips_type_find> vips_type_find{"vips_type_find"};
inline const VipsFunction<&::vips_unpremultiply> vips_unpremultiply{"vips_unpremultiply"};
inline const VipsFunction<&::vips_version> vips_version{"vips_version"};

}  // namespace krl::player

#endif
