#pragma once

// Linux input devices and rotary encoders as panel keys (library YxFrontPanelEvdev, built with
// libevdev).

#include <frontpanelhw/evdev_key_source.h>
#include <frontpanelhw/input_key_map.h>
