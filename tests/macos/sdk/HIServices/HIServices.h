// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <HIServices/AXActionConstants.h>
#include <HIServices/AXAttributeConstants.h>
#include <HIServices/AXError.h>
#include <HIServices/AXUIElement.h>
#include <HIServices/AXValue.h>
