#pragma once

#include <string>

/// Interfaces between the test programs and the bundles that they load.
namespace demo {

/// Records what happens to components. Registered by the test program.
class Ledger {
 public:
  virtual ~Ledger() = default;
  virtual void note(const std::string& entry) = 0;
};

class Word {
 public:
  virtual ~Word() = default;
  virtual std::string text() const = 0;
};

class Number {
 public:
  virtual ~Number() = default;
  virtual int value() const = 0;
};

class First {
 public:
  virtual ~First() = default;
  virtual std::string path() const = 0;
};

class Second {
 public:
  virtual ~Second() = default;
  virtual std::string path() const = 0;
};

class Third {
 public:
  virtual ~Third() = default;
  virtual std::string path() const = 0;
};

class Broken {
 public:
  virtual ~Broken() = default;
};

class NeedsBroken {
 public:
  virtual ~NeedsBroken() = default;
};

class LeftA {
 public:
  virtual ~LeftA() = default;
};

class RightB {
 public:
  virtual ~RightB() = default;
};

}  // namespace demo
