// MIT License. Texts as views hand them to the drawing context.
#pragma once

#include <string>

#include "vstgui/base_object.h"

namespace VSTGUI {

// A text in the form that the platform draws: here, UTF-8.
class IPlatformString : public CBaseObject {
 public:
  static IPlatformString* createWithUTF8String(UTF8StringPtr text = nullptr) { return new IPlatformString(text); }
  virtual void setUTF8String(UTF8StringPtr text) { text_ = text ? text : ""; }
  const std::string& utf8() const { return text_; }

 protected:
  explicit IPlatformString(UTF8StringPtr text) : text_(text ? text : "") {}
  ~IPlatformString() override = default;

 private:
  std::string text_;
};

// A null pointer is an empty text. The platform's form lives as long as the object and its text.
class UTF8String {
 public:
  UTF8String(UTF8StringPtr text = nullptr) : platform_(owned(IPlatformString::createWithUTF8String(text))) {}
  UTF8StringPtr get() const { return platform_->utf8().c_str(); }
  void set(UTF8StringPtr text) { platform_ = owned(IPlatformString::createWithUTF8String(text)); }
  bool empty() const { return platform_->utf8().empty(); }
  size_t getByteCount() const { return platform_->utf8().size() + 1; }
  IPlatformString* getPlatformString() const { return platform_; }
  operator UTF8StringPtr() const { return get(); }

 private:
  SharedPointer<IPlatformString> platform_;
};

class CString {
 public:
  CString(UTF8StringPtr text = nullptr) : text_(text) {}
  UTF8StringPtr getUTF8String() const { return text_.get(); }
  void setUTF8String(UTF8StringPtr text) { text_.set(text); }
  IPlatformString* getPlatformString() const { return text_.getPlatformString(); }

 private:
  UTF8String text_;
};

}  // namespace VSTGUI
