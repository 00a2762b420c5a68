// The bases of the typed payloads of a profile: the payload, its child records, and its serializer.
#pragma once

#include <nvxprofile/export.h>

#include <cstdint>

// A payload. Auto-delete rules the children of a payload that holds a list: with it, DeleteContents destroys them;
// without it, they are borrowed. In both cases DeleteContents empties the list. The destructor is not virtual: a
// payload is destroyed through its own class, which adds a virtual destructor behind these slots.
class NVX_EXPORT CDataObject {
 public:
  ~CDataObject() = default;

  // What the payload stands for, as its form says it.
  virtual std::uint32_t GetUsedType();
  virtual void SetUsedType(std::uint32_t usedType);
  // Whether the payload owns its children; true at first.
  virtual bool IsAutoDelete();
  virtual void SetAutoDelete(bool autoDelete);

 protected:
  CDataObject() = default;
  CDataObject(const CDataObject&) = default;
  CDataObject& operator=(const CDataObject&) = default;

  // Empties the payload.
  virtual void DeleteContents();

 private:
  std::uint32_t usedType_ = 0;
  bool autoDelete_ = true;
};

// A child record of a payload.
class NVX_EXPORT CDataEntryObject {
 public:
  virtual ~CDataEntryObject();

 protected:
  CDataEntryObject() = default;
  CDataEntryObject(const CDataEntryObject&) = default;
  CDataEntryObject& operator=(const CDataEntryObject&) = default;

  // Empties the record.
  virtual void DeleteContents();
};

// A serializer: an object made for one load or one save.
class NVX_EXPORT CDataFile {};
