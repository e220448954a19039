#include "WebHost/Window/OpenGLName_linux.h"

#include "Platform/statusitem/GObjects_linux.h"

#include <epoxy/gl.h>
#include <gtk/gtk.h>

namespace quorvel {

std::string openGLName() {
    const ObjectRef<GdkGLContext> context(
        gdk_display_create_gl_context(gdk_display_get_default(), nullptr));
    if (!context || gdk_gl_context_realize(context.get(), nullptr) == FALSE) {
        return "";
    }
    gdk_gl_context_make_current(context.get());
    const GLubyte* const name = glGetString(GL_RENDERER);
    std::string text = name == nullptr ? "" : reinterpret_cast<const char*>(name);
    gdk_gl_context_clear_current();
    return text;
}

} // namespace quorvel
