// What the module offers under the name "SecondService".
#pragma once

#include "cad/api/services.h"

class SecondService : public AcRxObject {
  ACRX_DECLARE(SecondService)
 public:
  virtual int marks() const = 0;
  // Called by the command CALLBACK.
  virtual void setCallback(void (*callback)()) = 0;
};
