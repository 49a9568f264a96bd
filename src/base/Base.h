#pragma once

// The whole base vocabulary in one include.

#include "base/CString.h"
#include "base/Collections.h"
#include "base/Export.h"
#include "base/FastDelegate.h"
#include "base/Format.h"
#include "base/Geometry.h"
#include "base/Region.h"
#include "base/TextCodec.h"
#include "base/Types.h"
#include "base/WinConstants.h"
