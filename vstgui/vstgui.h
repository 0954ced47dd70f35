// MIT License. Everything of the view layer that views and editors need.
#pragma once

#include "vstgui/base_object.h"
#include "vstgui/bitmap.h"
#include "vstgui/control.h"
#include "vstgui/draw_context.h"
#include "vstgui/editor_interface.h"
#include "vstgui/font.h"
#include "vstgui/frame.h"
#include "vstgui/kick_button.h"
#include "vstgui/option_menu.h"
#include "vstgui/param_display.h"
#include "vstgui/text.h"
#include "vstgui/values.h"
#include "vstgui/view.h"
#include "vstgui/view_container.h"

// The version of the published interface that the names are from.
#define VSTGUI_VERSION_MAJOR 4
#define VSTGUI_VERSION_MINOR 3
