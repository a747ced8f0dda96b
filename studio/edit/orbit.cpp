#include "studio/edit/orbit.h"
