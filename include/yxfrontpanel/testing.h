#pragma once

// The testing kit (library YxFrontPanelToolbox::Testing): a recording display, key scripts,
// frames as text and golden files, usable with any test framework. The GoogleTest matchers
// are in <yxfrontpanel/testing/gtest_matchers.h>, which this header leaves out.

#include <yxfrontpanel/testing/frame_text.h>
#include <yxfrontpanel/testing/golden_file.h>
#include <yxfrontpanel/testing/key_script.h>
#include <yxfrontpanel/testing/manual_clock.h>
#include <yxfrontpanel/testing/recording_display.h>
#include <yxfrontpanel/testing/script_transcript.h>
