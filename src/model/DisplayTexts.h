#pragma once

#include <QStringList>

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tallyglass {

struct DisplayText
{
    const char *key;
    const char *japanese; ///< UTF-8, used when no catalogue has the key
};

/// Every text that a user can see. Keys that end in ".format", and a few older ones, hold
/// placeholders for formatText().
inline constexpr std::array displayTexts{
    DisplayText{"app.name", "Tallyglass"},

    DisplayText{"provider.codex", "Codex"},
    DisplayText{"provider.claude", "Claude Code"},
    DisplayText{"provider.claude.short", "Claude"},
    DisplayText{"provider.copilot", "GitHub Copilot"},
    DisplayText{"provider.copilot.short", "Copilot"},

    DisplayText{"window.short.fiveHours", "5h"},
    DisplayText{"window.short.hour", "1h"},
    DisplayText{"window.short.day", "日"},
    DisplayText{"window.short.week", "週"},
    DisplayText{"window.short.month", "月"},

    DisplayText{"limit.window.unknown", "上限"},
    DisplayText{"limit.window.sevenDays", "7日"},
    DisplayText{"limit.window.days", "%d日"},
    DisplayText{"limit.window.minutes", "%d分"},

    DisplayText{"common.settings", "設定"},
    DisplayText{"common.refresh", "更新"},
    DisplayText{"common.exit", "終了"},
    DisplayText{"common.detected", "検出済み"},
    DisplayText{"common.notDetected", "未検出"},
    DisplayText{"common.noData", "データなし"},

    DisplayText{"menu.open", "パネルを開く"},
    DisplayText{"menu.period", "期間"},
    DisplayText{"menu.cliMissing", "CLI未検出: %@"},
    DisplayText{"menu.cliNoticeBody", "設定で検出状態と導入案内を確認できます"},

    DisplayText{"summary.total", "合計"},
    DisplayText{"metric.topModels", "トップモデル"},
    DisplayText{"metric.noModelInfo", "モデル情報なし"},
    DisplayText{"metric.cache", "キャッシュ"},
    DisplayText{"metric.events", "イベント"},
    DisplayText{"metric.usage", "使用量"},
    DisplayText{"metric.resetRemaining", "リセットまで"},
    DisplayText{"status.remaining.format", "残り %@"},
    DisplayText{"status.input.format", "入力 %@"},
    DisplayText{"status.output.format", "出力 %@"},

    DisplayText{"history.section", "使用履歴"},
    DisplayText{"history.empty", "履歴データを収集中です。しばらくすると表示されます。"},

    DisplayText{"updated.format", "更新 %@"},
    DisplayText{"footer.reset.format", "リセット %@"},
    DisplayText{"reset.minutes", "あと%d分"},
    DisplayText{"reset.hoursMinutes", "あと%d時間%d分"},
    DisplayText{"reset.daysHours", "あと%d日%d時間"},

    DisplayText{"update.check", "更新確認"},
    DisplayText{"update.available", "新しいバージョン %@ が利用可能です"},
    DisplayText{"update.body", TALLYGLASS_SITE_DOMAIN " から最新版をダウンロードできます。"},
    DisplayText{"update.releaseNotes.title", "変更点"},
    DisplayText{"update.releaseNotes.link", "変更点を見る"},
    DisplayText{"update.section", "アップデート"},
    DisplayText{"update.settingsBody",
                "新しいバージョンがあるか確認し、見つかった場合は " TALLYGLASS_SITE_DOMAIN
                " からダウンロードできます。"},
    DisplayText{"update.action", "今すぐ更新"},
    DisplayText{"update.openSite", "配布ページ"},
    DisplayText{"update.notConfigured",
                "開発ビルドではSparkle公開鍵が未設定のため、配布ページを開きます。"},

    DisplayText{"token.missing.title", "Claudeトークンを取得できません"},
    DisplayText{
        "token.missing.body",
        "KeychainアクセスとClaude Codeのログイン状態を確認してください。ログイン済みでも取得で"
        "きない場合は「claude auth login」で再ログインしてください。"},
    DisplayText{"token.expired.title", "Claudeトークンが期限切れです"},
    DisplayText{
        "token.expired.body",
        "更新ボタンかClaude Codeの実行で復旧します。それまでClaudeの%は推定値（~付き）です。"},
    DisplayText{"token.refresh", "今すぐ更新"},

    DisplayText{"api.status.format", "Claude使用量API: %@"},
    DisplayText{"api.status.ok", "正常 (%@ に取得)"},
    DisplayText{"api.status.http", "HTTPエラー %d"},
    DisplayText{"api.status.parse", "応答の解析に失敗"},
    DisplayText{"api.status.expired", "トークン期限切れ。Claude Codeを一度実行すると更新されます"},
    DisplayText{
        "api.status.noToken",
        "トークン未検出。KeychainアクセスとClaude Codeのログイン状態を確認してください。ログイ"
        "ン済みでも取得できない場合は、ターミナルで「claude auth "
        "login」を実行して再ログインしてください"},
    DisplayText{"api.status.network", "通信エラー"},
    DisplayText{"api.status.never", "未実行"},

    DisplayText{"settings.cliIntegration", "CLI連携"},
    DisplayText{"settings.cliLocalDataNotice",
                "メールやパスワードは使わず、各CLIのローカルデータを読み取ります。"},
    DisplayText{"settings.recheck", "再チェック"},
    DisplayText{"settings.data.format", "データ: %@"},
    DisplayText{"settings.widgetSection", "ウィジェットと常駐"},
    DisplayText{
        "settings.widgetNote",
        "ウィジェットは本アプリが書き出したデータを表示するため、アプリ終了中は更新されません。"
        "ログイン時の自動起動を有効にしておくことを推奨します。"},
    DisplayText{"settings.launchAtLogin", "ログイン時に自動起動"},
    DisplayText{"settings.launchAtLogin.needsApproval",
                "システム設定の「ログイン項目」で Tallyglass を許可してください"},
    DisplayText{"alerts.enable", "使用量がしきい値に達したら通知"},
    DisplayText{"alerts.threshold.format", "しきい値 %@"},
    DisplayText{"alerts.body", "%1$@ の使用量が %2$@ に達しました"},
    DisplayText{"budgets.section", "トークン予算(%推定用)"},

    DisplayText{"cli.codex.installHint",
                "Codex CLIまたはCodexアプリをインストールし、ログイン後に一度起動してください。"},
    DisplayText{"cli.claude.installHint",
                "Claude Code CLIをインストールし、ログイン後に一度起動してください。"},
    DisplayText{
        "cli.copilot.installHint",
        "GitHub Copilot CLIをインストールし、ログイン後に一度起動してください。使用量はセッショ"
        "ンのevents.jsonlから集計されます。"},
    DisplayText{"cli.claude.bridgeReady", "Claude CodeのstatusLineブリッジは設定済みです。"},
    DisplayText{"cli.claude.bridgeMissing",
                "Claude "
                "CodeのstatusLineブリッジが未設定です。設定画面の案内に従って有効化してください。"},

    DisplayText{"report.progress.format", "ログを読み取り中… %@ / %@ MB"},
    DisplayText{"command.unknownWord.format", "不明な引数「%@」（使い方: tallyglass --help）"},
    DisplayText{"command.unknownWindow.format",
                "不明な期間「%@」（fiveHours、hour、day、week、monthのいずれか）"},
    DisplayText{"command.noProgram.format", "%@がありません"},
    DisplayText{"command.jsonIsWhole", "--jsonは全期間を出力するため、--windowと併用できません"},
    DisplayText{"command.help", R"(使い方: tallyglass [コマンド] [オプション]

AIコーディングCLI（Claude Code、Codex CLI、GitHub Copilot CLI）の使用量を表示します。

コマンド:
  （なし）           トレイに常駐し、5分ごとに集計します
  report             ログを一度集計して表で表示します。ネットワークには接続せず、ファイルも書きません
    --window 期間    fiveHours、hour、day、week、monthのいずれかだけを表示します
    --json           usage_snapshot.jsonと同じJSONを出力します

オプション:
  --demo             実際のホームフォルダの代わりに、架空のログで動作します
  --help             この説明を表示します
  --version          バージョンを表示します)"},
};

/// A key that the table is known to hold: a misspelt one does not compile.
class TextKey
{
public:
    // A key is written as the literal it is, so the conversion is meant to be implicit.
    consteval TextKey(const char *key) // NOLINT(google-explicit-constructor)
        : m_index(indexOf(key))
    {
    }

    /// For the QML files, whose keys no compiler reads.
    static std::optional<TextKey> find(std::string_view key)
    {
        for (std::size_t i = 0; i < displayTexts.size(); ++i) {
            if (displayTexts[i].key == key)
                return TextKey(i);
        }
        return std::nullopt;
    }

    constexpr const DisplayText &text() const { return displayTexts[m_index]; }

private:
    explicit TextKey(std::size_t index)
        : m_index(index)
    {
    }

    static consteval std::size_t indexOf(std::string_view key)
    {
        for (std::size_t i = 0; i < displayTexts.size(); ++i) {
            if (displayTexts[i].key == key)
                return i;
        }
        throw "no such text key"; // Reached while compiling only, and an error there.
    }

    std::size_t m_index;
};

/// The text of a key: from the installed catalogue, or else the Japanese default.
QString displayText(TextKey key);

/// Fills the placeholders of a text ("%@", "%d", or numbered: "%2$@") with \a arguments.
QString formatText(TextKey key, const QStringList &arguments);

} // namespace tallyglass
