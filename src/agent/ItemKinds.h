#pragma once

#include "core/JSON.h"

// The kinds of history items and the keys read from them, held as the JSON value's shared text:
// passes over thousands of items compare them by address and copy nothing.
namespace zentoro::ItemKinds {

inline const JSON functionCall("function_call");
inline const JSON functionCallOutput("function_call_output");
inline const JSON reasoning("reasoning");
inline const JSON inputImage("input_image");
inline const JSON typeKey("type");
inline const JSON callIDKey("call_id");
inline const JSON outputKey("output");
inline const JSON imageURLKey("image_url");

inline bool sameText(const QString &a, const QString &b)
{
    return a.size() == b.size() && (a.constData() == b.constData() || a == b);
}

// The text under `key`, or none when the item holds no string there.
inline const QString *textAt(const JSON &item, const JSON &key)
{
    const JSON *value = item.find(*key.stringRef());
    return value ? value->stringRef() : nullptr;
}

inline bool isType(const JSON &item, const JSON &type)
{
    const QString *text = textAt(item, typeKey);
    return text && sameText(*text, *type.stringRef());
}

} // namespace zentoro::ItemKinds
