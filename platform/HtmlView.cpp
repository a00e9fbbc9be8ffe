#include "platform/HtmlView.h"
