#pragma once

/// @file
/// Every public header of the library.  A source that needs one family includes that family's header alone.

#include "calendar/market_calendar.h"
#include "core/containers.h"
#include "core/exception.h"
#include "core/export.h"
#include "core/string.h"
#include "core/variant.h"
#include "engine/engine_data.h"
#include "fintext/financial_text.h"
#include "options/option_symbol.h"
#include "options/option_value.h"
#include "present/menu.h"
#include "present/print_data.h"
#include "present/screen.h"
#include "present/startup.h"
#include "store/file_tools.h"
#include "store/index_data_file.h"
#include "store/settings.h"
#include "store/uu_codec.h"
