#include "model/DisplayTexts.h"

#include <QCoreApplication>

namespace tallyglass {

namespace {

constexpr auto table = std::to_array<DisplayText>({
    {"app.name", "Tallyglass"},
    {"limit.window.unknown", "上限"},
    {"limit.window.days", "%d日"},
    {"limit.window.minutes", "%d分"},
    {"common.settings", "設定"},
    {"common.refresh", "更新"},
    {"common.exit", "終了"},
    {"common.detected", "検出済み"},
    {"common.notDetected", "未検出"},
    {"common.noData", "データなし"},
    {"menu.open", "パネルを開く"},
    {"menu.period", "期間"},
    {"menu.cliMissing", "CLI未検出: %@"},
    {"menu.cliNoticeBody", "設定で検出状態と導入案内を確認できます"},
    {"summary.total", "合計"},
    {"metric.topModels", "トップモデル"},
    {"metric.noModelInfo", "モデル情報なし"},
    {"metric.cache", "キャッシュ"},
    {"metric.events", "イベント"},
    {"metric.usage", "使用量"},
    {"metric.resetRemaining", "リセットまで"},
    {"status.remaining.format", "残り %@"},
    {"status.input.format", "入力 %@"},
    {"status.output.format", "出力 %@"},
    {"history.section", "使用履歴"},
    {"history.empty", "履歴データを収集中です。しばらくすると表示されます。"},
    {"updated.format", "更新 %@"},
    {"footer.reset.format", "リセット %@"},
    {"reset.minutes", "あと%d分"},
    {"reset.hoursMinutes", "あと%d時間%d分"},
    {"reset.daysHours", "あと%d日%d時間"},
    {"update.check", "更新確認"},
    {"update.available", "新しいバージョン %@ が利用可能です"},
    {"update.body", "%{site} から最新版をダウンロードできます。"},
    {"update.releaseNotes.title", "変更点"},
    {"update.releaseNotes.link", "変更点を見る"},
    {"update.section", "アップデート"},
    {"update.settingsBody",
     "新しいバージョンがあるか確認し、見つかった場合は %{site} からダウンロードできます。"},
    {"update.action", "今すぐ更新"},
    {"update.openSite", "配布ページ"},
    {"update.notConfigured", "開発ビルドではSparkle公開鍵が未設定のため、配布ページを開きます。"},
    {"token.missing.title", "Claudeトークンを取得できません"},
    {"token.missing.body",
     "KeychainアクセスとClaude Codeのログイン状態を確認してください。ログイン済みでも取得で"
     "きない場合は「claude auth login」で再ログインしてください。"},
    {"token.expired.title", "Claudeトークンが期限切れです"},
    {"token.expired.body",
     "更新ボタンかClaude Codeの実行で復旧します。それまでClaudeの%は推定値（~付き）です。"},
    {"token.refresh", "今すぐ更新"},
    {"api.status.format", "Claude使用量API: %@"},
    {"api.status.ok", "正常 (%@ に取得)"},
    {"api.status.http", "HTTPエラー %d"},
    {"api.status.parse", "応答の解析に失敗"},
    {"api.status.expired", "トークン期限切れ。Claude Codeを一度実行すると更新されます"},
    {"api.status.noToken",
     "トークン未検出。KeychainアクセスとClaude Codeのログイン状態を確認してください。ログイ"
     "ン済みでも取得できない場合は、ターミナルで「claude auth "
     "login」を実行して再ログインしてください"},
    {"api.status.network", "通信エラー"},
    {"api.status.never", "未実行"},
    {"settings.cliIntegration", "CLI連携"},
    {"settings.cliLocalDataNotice",
     "メールやパスワードは使わず、各CLIのローカルデータを読み取ります。"},
    {"settings.recheck", "再チェック"},
    {"settings.data.format", "データ: %@"},
    {"settings.widgetSection", "ウィジェットと常駐"},
    {"settings.widgetNote",
     "ウィジェットは本アプリが書き出したデータを表示するため、アプリ終了中は更新されません。"
     "ログイン時の自動起動を有効にしておくことを推奨します。"},
    {"settings.launchAtLogin", "ログイン時に自動起動"},
    {"settings.launchAtLogin.needsApproval",
     "システム設定の「ログイン項目」で Tallyglass を許可してください"},
    {"alerts.enable", "使用量がしきい値に達したら通知"},
    {"alerts.needsApproval", "システム設定の「通知」で Tallyglass を許可してください"},
    {"alerts.threshold.format", "しきい値 %@"},
    {"alerts.body", "%1$@ の使用量が %2$@ に達しました"},
    {"budgets.section", "トークン予算(%推定用)"},
    {"settings.countsAnswersOnce", "同じ回答は1回だけ数える"},
    {"settings.countsAnswersOnce.note",
     "ログには同じ回答が何度も記録されます。オフのときは、記録をすべて数えます。"},
    {"cli.claude.bridgeReady", "Claude CodeのstatusLineブリッジは設定済みです。"},
    {"cli.claude.bridgeMissing",
     "Claude "
     "CodeのstatusLineブリッジが未設定です。設定画面の案内に従って有効化してください。"},
    {"report.progress.format", "ログを読み取り中… %@ / %@ MB"},
    {"report.noLogs.format", "%@以下に、この1か月のログが見つかりません"},
    {"command.cannotWrite.format", "出力を書き込めません: %@"},
    {"command.unknownWord.format", "不明な引数「%@」（使い方: tallyglass --help）"},
    {"command.unknownWindow.format", "不明な期間「%@」（%@のいずれか）"},
    {"command.unknownCounting.format", "不明な数え方「%@」（every、onceのいずれか）"},
    {"command.noProgram.format", "%@がありません"},
    {"command.jsonIsWhole", "--jsonは全期間を出力するため、--windowと併用できません"},
    {"command.unknownTool.format", "不明なツール「%@」（%@のいずれか）"},
    {"command.jsonHasAll", "--jsonは常にすべてを出力するため、--allと併用できません"},
    {"command.help", R"(使い方: tallyglass [コマンド] [オプション]

AIコーディングCLI（%2$@）の使用量を表示します。

コマンド:
  （なし）           トレイに常駐し、5分ごとに集計します
  report             ログを一度集計して表で表示します。ネットワークには接続せず、ファイルも書きません
    --window 期間    %1$@のいずれかだけを表示します
    --count 数え方   every（ログの記録すべて、既定）またはonce（同じ回答は1回だけ）
    --json           usage_snapshot.jsonと同じJSONを出力します
  explain            表示される数値の内訳を、記録のファイルと行とともに表示します
    --window 期間    %1$@のいずれか（既定はfiveHours）
    --tool ツール    %3$@のいずれかだけを表示します
    --model モデル   このモデルの記録だけを表示します
    --count 数え方   reportと同じ
    --all            すべての記録と上限の読み取りを表示します
    --json           1行に1つのJSONオブジェクトを出力します
  audit              2つの数え方の差を原因ごとに示し、読み取られなかったログを一覧します
    --window 期間    %1$@のいずれかだけを表示します
    --json           JSONを出力します
  status             前回保存された集計を1行で表示します（プロンプトやステータスバー用）
    --window 期間    %1$@のいずれか（既定はfiveHours）
    --tool ツール    %3$@のいずれかだけを表示します
    --format 書式    {all}、最も使ったツールの{tool}、{percent}、{tokens}、{reset}、{pace}、
                     {window}、{age}、{stale}を置き換えた行
    --json           Waybarのカスタムモジュール用のJSONを出力します
  bridge             Claude Codeのステータスラインから上限を受け取るブリッジを管理します
                     （--install、--uninstall、--status）

オプション:
  --demo             実際のホームフォルダの代わりに、架空のログで動作します
  --help             この説明を表示します
  --version          バージョンを表示します)"},

    {"age.minutes.format", "%d分前"},
    {"age.hours.format", "%d時間前"},
    {"age.days.format", "%d日前"},

    {"explain.others.format", "ほか%@件（--allで表示）"},
    {"explain.sum.format", "合計（%@件）"},
    {"explain.noLimit", "ツールが報告した上限はありません"},
    {"explain.read.format", "読み取り %@（%@）"},
    {"explain.reset.format", "リセット %@（%@）"},
    {"explain.resetPassed.format", "リセット %@（経過済み）"},
    {"explain.noReset", "リセット時刻なし"},
    {"explain.otherLimits.format", "採用されなかった読み取り %@件"},
    {"explain.endpointLimit.format", "保存された集計の上限 %@（Claude使用量APIから）"},

    {"audit.everyRecord", "記録すべて"},
    {"audit.eachAnswerOnce", "回答1回ずつ"},
    {"audit.factor", "倍率"},
    {"audit.records", "記録数"},
    {"audit.blocks", "同じ回答のブロック"},
    {"audit.resumed", "再開・分岐したファイル"},
    {"audit.innerCopies", "記録の中の写し"},
    {"audit.repeats", "繰り返し"},
    {"audit.replays", "分岐元の再生"},
    {"audit.runningTotals", "累計値"},
    {"audit.parts", "内訳の二重計上"},
    {"audit.earlierRuns", "数えられていない実行"},
    {"audit.statedTotals", "記載された合計との差"},
    {"audit.tooLarge", "大きすぎるファイル"},
    {"audit.compressed", "圧縮されたファイル"},
    {"audit.unreadable", "読み取れません"},
    {"audit.notUtf8", "UTF-8ではありません"},
    {"audit.brokenLines", "壊れた行"},
    {"audit.tornLine", "途中で切れた最終行"},
    {"audit.allRead", "読み取られなかったログはありません"},
    {"audit.notRead.format", "読み取られなかったログ（%@件）"},
    {"audit.size.format", "%@ KB"},
    {"audit.lines.format", "%@行目"},

    {"command.unknownPlaceholder.format",
     "不明な項目「{%@}」（all、tool、percent、tokens、reset、pace、window、age、staleのいずれか）"},
    {"pace.title", "見込み"},
    {"pace.usedUp.format", "%@（%@で上限）"},
    {"status.pace.format", "見込み %@"},
    {"status.stale.format", "（%@のデータ）"},
});

static_assert(std::ranges::equal(table, textKeys, {}, &DisplayText::key),
              "the table and the list of keys differ");

} // namespace

std::optional<TextKey> TextKey::find(std::string_view key)
{
    const auto found = std::ranges::find(textKeys, key);
    return found == textKeys.end()
        ? std::nullopt
        : std::optional{TextKey(static_cast<std::size_t>(found - textKeys.begin()))};
}

const DisplayText &TextKey::text() const
{
    return table[m_index];
}

QString displayText(const DisplayText &text)
{
    // Without an entry in a catalogue Qt gives the key back.
    QString found = qtTrId(text.key);
    if (found == QLatin1String(text.key))
        found = QString::fromUtf8(text.japanese);
    return found.replace(QLatin1String("%{site}"), QStringLiteral(TALLYGLASS_SITE_DOMAIN));
}

QString displayText(TextKey key)
{
    return displayText(key.text());
}

QString formatText(TextKey key, const QStringList &arguments)
{
    const QString format = displayText(key);
    QString filled;
    qsizetype next = 0;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QStringView rest = QStringView(format).mid(i);
        if (rest.startsWith(u"%@") || rest.startsWith(u"%d")) {
            filled += arguments.value(next++);
            i += 1;
        } else if (rest.size() >= 4 && rest[0] == u'%' && rest[1].isDigit() && rest[2] == u'$') {
            filled += arguments.value(rest[1].digitValue() - 1);
            i += 3;
        } else {
            filled += format[i];
        }
    }
    return filled;
}

} // namespace tallyglass
