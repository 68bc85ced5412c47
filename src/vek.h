#pragma once
// The whole public interface of vek.

#include "vek/Version.h"
#include "vek/foundation/ErrorTrap.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/foundation/VekError.h"
#include "vek/platform/AppPath.h"
#include "vek/platform/Clock.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Currency.h"
#include "vek/platform/Date.h"
#include "vek/platform/Format.h"
#include "vek/platform/Locale.h"
#include "vek/platform/ProfileFile.h"
#include "vek/platform/Settings.h"
#include "vek/platform/Text.h"
#include "vek/platform/Variant.h"
