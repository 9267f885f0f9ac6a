// Marks what the dialog kit offers to modules and front ends; everything else stays hidden.
#pragma once

#define CAD_UI_API __attribute__((visibility("default")))
