#pragma once

#include <QStringView>

namespace tallyglass {

/// Whether a text keeps to the XML that feeds need: no document type, at most 32 attributes in a
/// tag and 32 levels of elements. Such a text may still be malformed.
///
/// To be asked before QXmlStreamReader, which compares each attribute of a tag with each other
/// one, and each prefix with all namespaces in force: a megabyte of attributes takes it 78 s. A
/// document type it reads to its end, which takes up to 23 s, before it tells that there is one.
bool isModestXml(QStringView xml);

} // namespace tallyglass
