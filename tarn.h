#pragma once

/// @file
/// Every header of the C++ face: values that release themselves, dates, menus, settings and reports of loads
/// and saves, all in `namespace tarn`, over the types of tarnutil.h.  A source that needs one family includes
/// that family's header alone.

#include "core/date.h"
#include "core/value.h"
#include "present/menu_tree.h"
#include "store/base64.h"
#include "store/client_settings.h"
#include "store/keyed_file.h"
#include "store/load_report.h"
