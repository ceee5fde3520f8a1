#pragma once

// Everything an application needs from the toolkit, its IPv4 helpers and the platform headers.
// The optional device back ends (terminal, GPIO, input devices) have headers of their own,
// installed with their libraries; <yxfrontpanel/components.h> says which ones this installation
// has.

#include <frontpanelhw/code_page.h>
#include <frontpanelhw/device_file.h>
#include <frontpanelhw/display.h>
#include <frontpanelhw/display_types.h>
#include <frontpanelhw/frame_diff.h>
#include <frontpanelhw/hd44780_bus.h>
#include <frontpanelhw/hd44780_charset.h>
#include <frontpanelhw/hd44780_display.h>
#include <frontpanelhw/hd44780_gpio.h>
#include <frontpanelhw/hd44780_i2c.h>
#include <frontpanelhw/input_errors.h>
#include <frontpanelhw/key_source.h>
#include <frontpanelhw/screen_text.h>
#include <yxbase2/log.h>
#include <yxbase2/this_thread.h>
#include <yxfrontpanel/apply_key.h>
#include <yxfrontpanel/base_editor.h>
#include <yxfrontpanel/control.h>
#include <yxfrontpanel/drawing.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/form.h>
#include <yxfrontpanel/i_form.h>
#include <yxfrontpanel/inline_editor_menu_item.h>
#include <yxfrontpanel/ip.h>
#include <yxfrontpanel/ip_address_editor.h>
#include <yxfrontpanel/ip_address_editor_menu_item.h>
#include <yxfrontpanel/ip_mask_editor.h>
#include <yxfrontpanel/item_connector.h>
#include <yxfrontpanel/menu_item.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/progress_bar.h>
#include <yxfrontpanel/radio_menu_item.h>
#include <yxfrontpanel/scroll_label_menu_item.h>
#include <yxfrontpanel/scrollable_label.h>
#include <yxfrontpanel/slider.h>
#include <yxfrontpanel/slider_menu_item.h>
#include <yxfrontpanel/string_helper.h>
#include <yxfrontpanel/text_constants.h>
#include <yxfrontpanel/tree_menu_item.h>
#include <yxfrontpanel/trigger_menu_item.h>
#include <yxfrontpanel/user_dialog.h>
#include <yxfrontpanel/value_editor.h>
#include <yxfrontpanel/value_editor_menu_item.h>
