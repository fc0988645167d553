// Leaks an object in a GLib callback, with the main loop on the stack below, as on the threads of Aravis.

#include <glib-object.h>

namespace {

[[gnu::noinline]] void loseObject()
{
    static_cast<void>(g_object_new(G_TYPE_OBJECT, nullptr));
}

gboolean loseAndQuit(gpointer loop)
{
    loseObject();
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_REMOVE;
}

} // namespace

int main()
{
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    g_idle_add(loseAndQuit, loop);
    g_main_loop_run(loop);
    g_main_loop_unref(loop);
    return 0;
}
