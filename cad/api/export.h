// Marks what libvessora-cad.so offers to modules and front ends; everything else stays hidden.
#pragma once

#define CAD_API __attribute__((visibility("default")))
