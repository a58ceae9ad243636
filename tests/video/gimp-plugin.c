/* A plug-in that lets a batch of GIMP run one of our operations on a picture: GIMP's own scripts can name only the
 * operations that it has procedures for. It applies `operation` with its defaults to `drawable`, in the format and
 * by the buffers of GIMP, and prints how many of our operations GEGL knows there and some units of properties. */
#include <libgimp/gimp.h>
#include <string.h>

static void query(void) {
    static const GimpParamDef arguments[] = {{GIMP_PDB_INT32, "run-mode", "non-interactive"},
                                             {GIMP_PDB_DRAWABLE, "drawable", "what is changed"},
                                             {GIMP_PDB_STRING, "operation", "such as krl:vignette"}};
    gimp_install_procedure("krl-test-apply", "Applies an operation", "", "", "", "", NULL, "*", GIMP_PLUGIN,
                           G_N_ELEMENTS(arguments), 0, arguments, NULL);
}

static guint count_operations(void) {
    guint count = 0, ours = 0, i;
    gchar** names = gegl_list_operations(&count);
    for (i = 0; i < count; ++i) ours += strncmp(names[i], "krl:", 4) == 0;
    g_free(names);
    return ours;
}

/* The unit by which dialogs show a property. */
static const gchar* unit_of(const gchar* operation, const gchar* property) {
    const gchar* unit = gegl_param_spec_get_property_key(gegl_operation_find_property(operation, property), "unit");
    return unit ? unit : "no unit";
}

static void apply(gint32 drawable, const gchar* operation) {
    GeglBuffer* from = gimp_drawable_get_buffer(drawable);
    GeglBuffer* to = gimp_drawable_get_shadow_buffer(drawable);
    GeglNode* graph = gegl_node_new();
    GeglNode* source = gegl_node_new_child(graph, "operation", "gegl:buffer-source", "buffer", from, NULL);
    GeglNode* effect = gegl_node_new_child(graph, "operation", operation, NULL);
    GeglNode* sink = gegl_node_new_child(graph, "operation", "gegl:write-buffer", "buffer", to, NULL);
    gegl_node_link_many(source, effect, sink, NULL);
    gegl_node_process(sink);
    g_object_unref(graph);
    g_object_unref(to);
    g_object_unref(from);
    gimp_drawable_merge_shadow(drawable, FALSE);
}

static void run(const gchar* name, gint count, const GimpParam* arguments, gint* value_count, GimpParam** values) {
    static GimpParam value;
    (void)name;
    *value_count = 1;
    *values = &value;
    value.type = GIMP_PDB_STATUS;
    value.data.d_status = GIMP_PDB_CALLING_ERROR;
    if (count != 3) return;
    gegl_init(NULL, NULL);
    g_print("%u operations\n", count_operations());
    g_print("%s, %s, %s\n", unit_of("krl:vignette", "blur"), unit_of("krl:radialBlur", "radialPoint-x"),
            unit_of("krl:vignette", "scaleX"));
    apply(arguments[1].data.d_drawable, arguments[2].data.d_string);
    value.data.d_status = GIMP_PDB_SUCCESS;
}

const GimpPlugInInfo PLUG_IN_INFO = {NULL, NULL, query, run};

MAIN()
