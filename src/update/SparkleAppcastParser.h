#pragma once

#include <QString>
#include <QUrl>

#include <optional>
#include <vector>

namespace tallyglass {

/// Reads an update feed: RSS with the elements and attributes of the Sparkle framework.
struct SparkleAppcastParser
{
    /// One offered version. What is missing, empty or no web address in the feed is absent; where
    /// the feed says something twice, the last counts.
    struct Item
    {
        std::optional<QString> title;
        std::optional<QString> buildVersion;
        std::optional<QString> shortVersion;
        std::optional<QUrl> downloadURL;
        std::optional<QString> releaseNotesHTML;
        std::optional<QUrl> releaseNotesLink;

        bool operator==(const Item &) const = default;

        /// The version as shown to the user; empty when the item names none.
        QString versionText() const;
    };

    /// Reads the items that name a version, in the order of the feed. Nothing when the feed is no
    /// well-formed XML in UTF-8, more than isModestXml() allows, or longer than largestHttpBody.
    static std::optional<std::vector<Item>> parse(const QByteArray &feed);
};

} // namespace tallyglass
