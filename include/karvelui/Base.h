#pragma once

// The whole base vocabulary in one include.

#include <karvelui/CString.h>
#include <karvelui/Collections.h>
#include <karvelui/Export.h>
#include <karvelui/FastDelegate.h>
#include <karvelui/Format.h>
#include <karvelui/Geometry.h>
#include <karvelui/Region.h>
#include <karvelui/TextCodec.h>
#include <karvelui/Types.h>
#include <karvelui/WinConstants.h>
