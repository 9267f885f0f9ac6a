// Run-time classes: the type test that stands before every down-cast, and named services.
#pragma once

#include "cad/api/export.h"

class CAD_API AcRxObject;

class CAD_API AcRxClass {
 public:
  constexpr AcRxClass(const char16_t* name, const AcRxClass* parent)
      : name_(name), parent_(parent) {}
  const char16_t* name() const { return name_; }
  const AcRxClass* myParent() const { return parent_; }
  bool isDerivedFrom(const AcRxClass* other) const {
    for (const AcRxClass* c = this; c; c = c->parent_) {
      if (c == other) return true;
    }
    return false;
  }

 private:
  const char16_t* name_;
  const AcRxClass* parent_;
};

class CAD_API AcRxObject {
 public:
  virtual ~AcRxObject() = default;
  static const AcRxClass* desc();
  virtual const AcRxClass* isA() const;
  bool isKindOf(const AcRxClass* other) const { return isA()->isDerivedFrom(other); }
  // The object as T when it is one, else null.
  template <class T>
  static T* cast(AcRxObject* object, const T* = nullptr) {
    return object && object->isKindOf(T::desc()) ? static_cast<T*>(object) : nullptr;
  }
};

// Inside a class: declares desc() and isA(); the .cpp says ACRX_DEFINE(Class, Parent).
#define ACRX_DECLARE(Class)       \
 public:                          \
  static const AcRxClass* desc(); \
  const AcRxClass* isA() const override;
#define ACRX_DEFINE(Class, Parent)                                  \
  const AcRxClass* Class::desc() {                                  \
    static const AcRxClass description(u"" #Class, Parent::desc()); \
    return &description;                                            \
  }                                                                 \
  const AcRxClass* Class::isA() const { return Class::desc(); }
