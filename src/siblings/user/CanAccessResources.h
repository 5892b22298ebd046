// What the signed-in user may see.
#pragma once

#include "siblings/tools/ZRBasicString.h"

class CWnd;

// Kinds of resources.
inline constexpr int kResourceDevice = 2;

// Whether the signed-in user may see that resource; the window is the parent for whatever has to be asked, and may be
// null. Everything is allowed until a host sets a policy. UI thread only.
bool CanAccessResources(int kind, const wchar* name, CWnd* parent);

// The host's answer to the above; name is never null.
using ResourcePolicy = bool (*)(int kind, const wchar* name, CWnd* parent);
// Sets the policy in force; null allows everything again. UI thread only.
void SetResourcePolicy(ResourcePolicy policy);
