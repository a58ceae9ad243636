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

#define KRL_VIPS_FUNCTION(name) \
    inline const VipsFunction<&::name> name { #name }
KRL_VIPS_FUNCTION(g_free);
KRL_VIPS_FUNCTION(g_getenv);
KRL_VIPS_FUNCTION(g_markup_escape_text);
KRL_VIPS_FUNCTION(g_module_make_resident);
KRL_VIPS_FUNCTION(g_module_open);
KRL_VIPS_FUNCTION(g_object_ref);
KRL_VIPS_FUNCTION(g_object_unref);
KRL_VIPS_FUNCTION(g_setenv);
KRL_VIPS_FUNCTION(g_strdup);
KRL_VIPS_FUNCTION(g_strfreev);
KRL_VIPS_FUNCTION(g_type_check_instance_cast);
KRL_VIPS_FUNCTION(g_unsetenv);
KRL_VIPS_FUNCTION(vips_area_unref);
KRL_VIPS_FUNCTION(vips_array_double_newv);
KRL_VIPS_FUNCTION(vips_autorot);
KRL_VIPS_FUNCTION(vips_bandjoin);
KRL_VIPS_FUNCTION(vips_bandjoin2);
KRL_VIPS_FUNCTION(vips_bandjoin_const1);
KRL_VIPS_FUNCTION(vips_blob_get);
KRL_VIPS_FUNCTION(vips_block_untrusted_set);
KRL_VIPS_FUNCTION(vips_cache_set_max);
KRL_VIPS_FUNCTION(vips_cast_uchar);
KRL_VIPS_FUNCTION(vips_cast_ushort);
KRL_VIPS_FUNCTION(vips_colourspace);
KRL_VIPS_FUNCTION(vips_concurrency_set);
KRL_VIPS_FUNCTION(vips_copy);
KRL_VIPS_FUNCTION(vips_error_buffer);
KRL_VIPS_FUNCTION(vips_error_clear);
KRL_VIPS_FUNCTION(vips_extract_area);
KRL_VIPS_FUNCTION(vips_extract_band);
KRL_VIPS_FUNCTION(vips_flatten);
KRL_VIPS_FUNCTION(vips_foreign_find_load_source);
KRL_VIPS_FUNCTION(vips_format_sizeof);
KRL_VIPS_FUNCTION(vips_icc_transform);
KRL_VIPS_FUNCTION(vips_image_copy_memory);
KRL_VIPS_FUNCTION(vips_image_get_array_int);
KRL_VIPS_FUNCTION(vips_image_get_bands);
KRL_VIPS_FUNCTION(vips_image_get_blob);
KRL_VIPS_FUNCTION(vips_image_get_fields);
KRL_VIPS_FUNCTION(vips_image_get_format);
KRL_VIPS_FUNCTION(vips_image_get_height);
KRL_VIPS_FUNCTION(vips_image_get_int);
KRL_VIPS_FUNCTION(vips_image_get_n_pages);
KRL_VIPS_FUNCTION(vips_image_get_orientation);
KRL_VIPS_FUNCTION(vips_image_get_page_height);
KRL_VIPS_FUNCTION(vips_image_get_string);
KRL_VIPS_FUNCTION(vips_image_get_typeof);
KRL_VIPS_FUNCTION(vips_image_get_width);
KRL_VIPS_FUNCTION(vips_image_get_xres);
KRL_VIPS_FUNCTION(vips_image_get_yres);
KRL_VIPS_FUNCTION(vips_image_guess_interpretation);
KRL_VIPS_FUNCTION(vips_image_new);
KRL_VIPS_FUNCTION(vips_image_new_from_memory);
KRL_VIPS_FUNCTION(vips_image_new_from_source);
KRL_VIPS_FUNCTION(vips_image_set_array_int);
KRL_VIPS_FUNCTION(vips_image_set_blob_copy);
KRL_VIPS_FUNCTION(vips_image_set_int);
KRL_VIPS_FUNCTION(vips_image_set_string);
KRL_VIPS_FUNCTION(vips_image_write_to_memory);
KRL_VIPS_FUNCTION(vips_image_write_to_target);
KRL_VIPS_FUNCTION(vips_init);
KRL_VIPS_FUNCTION(vips_linear1);
KRL_VIPS_FUNCTION(vips_object_get_type);
KRL_VIPS_FUNCTION(vips_object_local_array);
KRL_VIPS_FUNCTION(vips_operation_block_set);
KRL_VIPS_FUNCTION(vips_premultiply);
KRL_VIPS_FUNCTION(vips_profile_load);
KRL_VIPS_FUNCTION(vips_rotate);
KRL_VIPS_FUNCTION(vips_source_new_from_descriptor);
KRL_VIPS_FUNCTION(vips_target_new_to_descriptor);
KRL_VIPS_FUNCTION(vips_text);
KRL_VIPS_FUNCTION(vips_thumbnail_image);
KRL_VIPS_FUNCTION(vips_type_find);
KRL_VIPS_FUNCTION(vips_unpremultiply);
KRL_VIPS_FUNCTION(vips_version);
#undef KRL_VIPS_FUNCTION

}  // namespace krl::player

#endif
