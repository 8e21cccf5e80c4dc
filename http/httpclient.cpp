#include "http/httpclient.h"
