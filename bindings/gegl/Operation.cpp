#include "gegl/Operation.h"

#include <cstring>
#include <mutex>
#include <new>

#include "common/Titles.h"
#include "gegl/Properties.h"

namespace krl::gegl {

namespace {

using bindings::Role;

/// What all operations of one method have in common. Never freed: types live as long as the program.
struct Kind {
    const krl_method_info& method;
    Role role;
    std::string name;
    std::vector<Property> properties;  ///< once the class is made

    bool worksPerPixel() const { return method.flags & KRL_WORKS_PER_PIXEL; }
};

GQuark kindQuark() { return g_quark_from_static_string("krl-kind"); }
GQuark stateQuark() { return g_quark_from_static_string("krl-state"); }

const Kind& kindOf(gpointer operation) {
    return *static_cast<const Kind*>(g_type_get_qdata(G_OBJECT_TYPE(operation), kindQuark()));
}

/// What one operation holds. Threads of GEGL take turns.
struct State {
    explicit State(const Kind& kind) : values(kind.properties.size()), engine(krl_engine_new(0)) {
        for (size_t i = 0; i < values.size(); ++i) {
            g_value_init(&values[i], G_PARAM_SPEC_VALUE_TYPE(kind.properties[i].spec));
            g_param_value_set_default(kind.properties[i].spec, &values[i]);
        }
        krl_engine_keep_memory(engine.get(), 1);
    }
    ~State() {
        for (GValue& value : values) g_value_unset(&value);
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    std::mutex mutex;
    std::vector<GValue> values;
    bindings::Engine engine;
    std::string lastComplaint;
};

State& stateOf(gpointer operation) {
    return *static_cast<State*>(g_object_get_qdata(G_OBJECT(operation), stateQuark()));
}

/// One line, and the same one only once.
void complain(gpointer operation, const std::string& problem) {
    State& state = stateOf(operation);
    if (problem == state.lastComplaint) return;
    state.lastComplaint = problem;
    g_printerr("%s: %s\n", kindOf(operation).name.c_str(), problem.c_str());
}

// ---- Properties ------------------------------------------------------------------------------------------

void setProperty(GObject* object, guint id, const GValue* value, GParamSpec*) {
    State& state = stateOf(object);
    const std::lock_guard lock(state.mutex);
    g_value_copy(value, &state.values[id - 1]);
}

void getProperty(GObject* object, guint id, GValue* value, GParamSpec*) {
    State& state = stateOf(object);
    const std::lock_guard lock(state.mutex);
    g_value_copy(&state.values[id - 1], value);
}

int32_t sizeOf(gpointer operation, const char* name) {
    gint size = 0;
    g_object_get(operation, name, &size, nullptr);
    return size;
}

// ---- Extents ---------------------------------------------------------------------------------------------

/// The picture that the operation works on: that of the pad `input`, or for a source what its size says.
GeglRectangle pictureOf(GeglOperation* operation) {
    if (kindOf(operation).role == Role::Source)
        return {0, 0, sizeOf(operation, "width"), sizeOf(operation, "height")};
    const GeglRectangle* input = gegl_operation_source_get_bounding_box(operation, "input");
    return input ? *input : GeglRectangle{0, 0, 0, 0};
}

/// What has to be worked on for a region: that alone, or the whole picture.
GeglRectangle extentFor(GeglOperation* operation, const GeglRectangle& region) {
    const GeglRectangle picture = pictureOf(operation);
    if (kindOf(operation).worksPerPixel() || gegl_rectangle_is_infinite_plane(&picture)) return region;
    return picture;
}

GeglRectangle boundingBox(GeglOperation* operation) { return pictureOf(operation); }
GeglRectangle requiredForOutput(GeglOperation* operation, const gchar*, const GeglRectangle* region) {
    return extentFor(operation, *region);
}
GeglRectangle cachedRegion(GeglOperation* operation, const GeglRectangle* region) {
    return extentFor(operation, *region);
}
GeglRectangle invalidatedByChange(GeglOperation* operation, const gchar*, const GeglRectangle* region) {
    return extentFor(operation, *region);
}

const Babl* formatOf(GeglOperation* operation) {
    return babl_format_with_space("R'G'B'A u8", gegl_operation_get_source_space(operation, "input"));
}

void prepare(GeglOperation* operation) {
    const Babl* format = formatOf(operation);
    for (const char* pad : {"input", "aux", "output"})
        if (gegl_node_has_pad(operation->node, pad)) gegl_operation_set_format(operation, pad, format);
}

// ---- Work ------------------------------------------------------------------------------------------------

/// The pixels of a region of a buffer, red first.
class Pixels {
public:
    Pixels(GeglBuffer* from, const GeglRectangle& region, const Babl* format)
        : region_(region), bytes_(size_t(region.width) * size_t(region.height) * 4) {
        if (from)
            gegl_buffer_get(from, &region, 1.0, format, bytes_.data(), GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_NONE);
    }
    krl_picture picture() {
        krl_picture over = bindings::pictureOver(bytes_.data(), region_.width, region_.height);
        over.order = KRL_RGBA;
        return over;
    }

private:
    GeglRectangle region_;
    std::vector<uint8_t> bytes_;
};

/// The arguments of a call. What has its default is left out and takes the example, which depends on the
/// size.
class Arguments {
public:
    Arguments(gpointer operation, const GeglRectangle& extent)
        : isSource_(kindOf(operation).role == Role::Source) {
        const Kind& kind = kindOf(operation);
        State& state = stateOf(operation);
        const std::lock_guard lock(state.mutex);
        for (size_t i = 0; i < kind.properties.size(); ++i) {
            const Property& property = kind.properties[i];
            const bool isPlace = property.kind == PropertyKind::PlaceX;
            const GValue* second = isPlace ? &state.values[i + 1] : nullptr;
            const auto isDefault = [&](size_t at) {
                return g_param_value_defaults(kind.properties[at].spec, &state.values[at]);
            };
            const krl_argument_info& argument = *kind.method.arguments[property.argument];
            const bool isLeftOut = isDefault(i) && (!isPlace || isDefault(i + 1));
            if (!isLeftOut || (isSource_ && bindings::isSize(argument)))
                add(argument, valueOf(argument, property.kind, state.values[i], second, extent, problem_));
            if (!problem_.empty()) problem_ = std::string(argument.name) + ": " + problem_;
            if (!problem_.empty()) return;
            i += isPlace;
        }
    }
    void add(const krl_argument_info& argument, bindings::Value value) {
        given_.push_back({argument.name, value.get()});
        values_.push_back(std::move(value));
    }
    const std::string& problem() const { return problem_; }
    const std::vector<krl_argument>& given() const { return given_; }

private:
    bool isSource_;
    std::vector<krl_argument> given_;
    std::vector<bindings::Value> values_;
    std::string problem_;
};

/// Calls the method. A failure is reported, and `loaded` then holds what it held.
bindings::Result call(gpointer operation, const krl_picture* loaded, Arguments& arguments) {
    if (!arguments.problem().empty()) {
        complain(operation, arguments.problem());
        return nullptr;
    }
    krl_result* out = nullptr;
    const krl_code code = krl_call(stateOf(operation).engine.get(), loaded, kindOf(operation).method.name,
                                   arguments.given().data(), arguments.given().size(), &out);
    bindings::Result result(out);
    if (code == KRL_OK) return result;
    complain(operation, krl_result_message(out));
    return nullptr;
}

/// Adds the pictures: a method that changes its first picture takes `changed` there, and `second` elsewhere.
void addPictures(const Kind& kind, const krl_picture& changed, const krl_picture& second,
                 Arguments& arguments) {
    const krl_picture* next = kind.method.flags & KRL_REWRITES_PICTURE ? &second : &changed;
    for (size_t i = 0; i < kind.method.argument_count; ++i) {
        if (kind.method.arguments[i]->kind != KRL_KIND_PICTURE) continue;
        arguments.add(*kind.method.arguments[i], bindings::Value(krl_picture_value(next)));
        next = &second;
    }
}

void set(GeglBuffer* output, const GeglRectangle& region, const Babl* format, const void* pixels) {
    gegl_buffer_set(output, &region, 0, format, pixels, GEGL_AUTO_ROWSTRIDE);
}

void rewrite(GeglOperation* operation, GeglBuffer* input, GeglBuffer* aux, GeglBuffer* output,
             const GeglRectangle& region) {
    const Kind& kind = kindOf(operation);
    const Babl* const format = formatOf(operation);
    const GeglRectangle extent = extentFor(operation, region);
    Pixels first(input, extent, format);
    const krl_picture picture = first.picture();
    if (kind.role == Role::Mixer && !aux) {
        complain(operation, "expected a second picture at aux");
        return set(output, extent, format, picture.pixels);
    }
    Arguments arguments(operation, extent);
    std::vector<Pixels> second;
    if (kind.role == Role::Mixer) {
        second.emplace_back(aux, extent, format);
        addPictures(kind, picture, second.back().picture(), arguments);
    }
    const bool isLoaded = kind.method.flags & KRL_REWRITES_PICTURE;
    if (!call(operation, isLoaded ? &picture : nullptr, arguments)) {
        Pixels unchanged(input, extent, format);
        return set(output, extent, format, unchanged.picture().pixels);
    }
    set(output, extent, format, picture.pixels);
}

void make(GeglOperation* operation, GeglBuffer* output) {
    Arguments arguments(operation, pictureOf(operation));
    const bindings::Result result = call(operation, nullptr, arguments);
    krl_picture picture = {sizeof picture, nullptr, 0, 0, 0, 0};
    if (krl_get_picture(krl_item(krl_result_value(result.get()), 0), &picture) != KRL_OK) return;
    // The method makes its picture with blue first.
    auto* bytes = static_cast<uint8_t*>(picture.pixels);
    for (size_t i = 0; i < size_t(picture.width) * size_t(picture.height) * 4; i += 4)
        std::swap(bytes[i], bytes[i + 2]);
    set(output, {0, 0, picture.width, picture.height}, formatOf(operation), bytes);
}

/// Carries out `work`; GEGL knows no exceptions.
template <class Work>
gboolean guarded(GeglOperation* operation, Work&& work) noexcept {
    try {
        work();
        return TRUE;
    } catch (const std::bad_alloc&) {
        g_printerr("%s: out of memory\n", kindOf(operation).name.c_str());
        return FALSE;
    }
}

gboolean processFilter(GeglOperation* operation, GeglBuffer* input, GeglBuffer* output,
                       const GeglRectangle* region, gint) {
    return guarded(operation, [&] { rewrite(operation, input, nullptr, output, *region); });
}
gboolean processMixer(GeglOperation* operation, GeglBuffer* input, GeglBuffer* aux, GeglBuffer* output,
                      const GeglRectangle* region, gint) {
    return guarded(operation, [&] { rewrite(operation, input, aux, output, *region); });
}
gboolean processSource(GeglOperation* operation, GeglBuffer* output, const GeglRectangle*, gint) {
    return guarded(operation, [&] { make(operation, output); });
}

// ---- Types -----------------------------------------------------------------------------------------------

void initialise(GTypeInstance* instance, gpointer) {
    // Constructed properties arrive right after this.
    const auto* kind =
        static_cast<const Kind*>(g_type_get_qdata(G_TYPE_FROM_CLASS(instance->g_class), kindQuark()));
    if (!kind) return;  // a parent type's turn
    g_object_set_qdata_full(G_OBJECT(instance), stateQuark(), new State(*kind),
                            [](gpointer state) { delete static_cast<State*>(state); });
}

void initialiseClass(gpointer table, gpointer data) {
    auto& kind = *static_cast<Kind*>(data);
    kind.properties = propertiesOf(kind.method);
    GObjectClass* const objects = G_OBJECT_CLASS(table);
    objects->set_property = setProperty;
    objects->get_property = getProperty;
    for (size_t i = 0; i < kind.properties.size(); ++i)
        g_object_class_install_property(objects, static_cast<guint>(i + 1), kind.properties[i].spec);

    GeglOperationClass* const operations = GEGL_OPERATION_CLASS(table);
    operations->prepare = prepare;
    operations->threaded = FALSE;
    operations->get_bounding_box = boundingBox;
    if (!kind.worksPerPixel()) {
        operations->get_required_for_output = requiredForOutput;
        operations->get_cached_region = cachedRegion;
        operations->get_invalidated_by_change = invalidatedByChange;
    }
    if (kind.role == Role::Source)
        GEGL_OPERATION_SOURCE_CLASS(table)->process = processSource;
    else if (kind.role == Role::Mixer)
        GEGL_OPERATION_COMPOSER_CLASS(table)->process = processMixer;
    else
        GEGL_OPERATION_FILTER_CLASS(table)->process = processFilter;
    gegl_operation_class_set_keys(operations, "name", kind.name.c_str(), "title",
                                  bindings::titleOf(kind.method.name).c_str(), "categories",
                                  kind.method.family, "description", kind.method.summary, nullptr);
}

GType parentOf(Role role) {
    switch (role) {
        case Role::Mixer:
            return GEGL_TYPE_OPERATION_COMPOSER;
        case Role::Source:
            return GEGL_TYPE_OPERATION_SOURCE;
        default:
            return GEGL_TYPE_OPERATION_FILTER;
    }
}

}  // namespace

void registerOperation(GTypeModule* module, const krl_method_info& method, Role role) {
    auto* kind = new Kind{method, role, std::string("krl:") + method.name, {}};
    registerChoices(module, method);
    GTypeQuery parent;
    g_type_query(parentOf(role), &parent);
    const GTypeInfo info = {
        static_cast<guint16>(parent.class_size),    nullptr, nullptr,    initialiseClass, nullptr, kind,
        static_cast<guint16>(parent.instance_size), 0,       initialise, nullptr};
    const std::string name = std::string("KrlOperation-") + method.name;
    const GType type =
        g_type_module_register_type(module, parentOf(role), name.c_str(), &info, static_cast<GTypeFlags>(0));
    g_type_set_qdata(type, kindQuark(), kind);
}

}  // namespace krl::gegl
