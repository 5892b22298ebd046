// Identity of a driver class.
#pragma once

// One object for each class; compared by address only.
struct CRuntimeClass {
    const char* className;
};

// Root of the classes that know their run-time class.
class CObject {
public:
    virtual const CRuntimeClass* GetRuntimeClass() const = 0;
    virtual ~CObject() = default;

protected:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};
