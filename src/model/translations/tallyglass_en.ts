<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="ja">
<context>
    <name></name>
    <message id="app.name">
        <source>Tallyglass</source>
        <translation>Tallyglass</translation>
    </message>
    <message id="limit.window.unknown">
        <source>上限</source>
        <translation>Limit</translation>
    </message>
    <message id="limit.window.days">
        <source>%d日</source>
        <translation>%d days</translation>
    </message>
    <message id="limit.window.minutes">
        <source>%d分</source>
        <translation>%d min</translation>
    </message>
    <message id="common.settings">
        <source>設定</source>
        <translation>Settings</translation>
    </message>
    <message id="common.refresh">
        <source>更新</source>
        <translation>Refresh</translation>
    </message>
    <message id="common.exit">
        <source>終了</source>
        <translation>Quit</translation>
    </message>
    <message id="common.detected">
        <source>検出済み</source>
        <translation>Found</translation>
    </message>
    <message id="common.notDetected">
        <source>未検出</source>
        <translation>Not found</translation>
    </message>
    <message id="common.noData">
        <source>データなし</source>
        <translation>No data</translation>
    </message>
    <message id="menu.open">
        <source>パネルを開く</source>
        <translation>Open Panel</translation>
    </message>
    <message id="menu.period">
        <source>期間</source>
        <translation>Period</translation>
    </message>
    <message id="menu.cliMissing">
        <source>CLI未検出: %@</source>
        <translation>CLI not found: %@</translation>
    </message>
    <message id="menu.cliNoticeBody">
        <source>設定で検出状態と導入案内を確認できます</source>
        <translation>The settings show what was looked for and how to install it</translation>
    </message>
    <message id="summary.total">
        <source>合計</source>
        <translation>Total</translation>
    </message>
    <message id="metric.topModels">
        <source>トップモデル</source>
        <translation>Top Models</translation>
    </message>
    <message id="metric.noModelInfo">
        <source>モデル情報なし</source>
        <translation>No model named</translation>
    </message>
    <message id="metric.cache">
        <source>キャッシュ</source>
        <translation>Cache</translation>
    </message>
    <message id="metric.events">
        <source>イベント</source>
        <translation>Events</translation>
    </message>
    <message id="metric.usage">
        <source>使用量</source>
        <translation>Used</translation>
    </message>
    <message id="metric.resetRemaining">
        <source>リセットまで</source>
        <translation>Until reset</translation>
    </message>
    <message id="status.remaining.format">
        <source>残り %@</source>
        <translation>%@ left</translation>
    </message>
    <message id="status.input.format">
        <source>入力 %@</source>
        <translation>In %@</translation>
    </message>
    <message id="status.output.format">
        <source>出力 %@</source>
        <translation>Out %@</translation>
    </message>
    <message id="history.section">
        <source>使用履歴</source>
        <translation>History</translation>
    </message>
    <message id="history.empty">
        <source>履歴データを収集中です。しばらくすると表示されます。</source>
        <translation>Collecting history. It shows here in a while.</translation>
    </message>
    <message id="updated.format">
        <source>更新 %@</source>
        <translation>Updated %@</translation>
    </message>
    <message id="footer.reset.format">
        <source>リセット %@</source>
        <translation>Reset %@</translation>
    </message>
    <message id="reset.minutes">
        <source>あと%d分</source>
        <translation>in %d min</translation>
    </message>
    <message id="reset.hoursMinutes">
        <source>あと%d時間%d分</source>
        <translation>in %d h %d min</translation>
    </message>
    <message id="reset.daysHours">
        <source>あと%d日%d時間</source>
        <translation>in %d d %d h</translation>
    </message>
    <message id="update.check">
        <source>更新確認</source>
        <translation>Check for Updates</translation>
    </message>
    <message id="update.available">
        <source>新しいバージョン %@ が利用可能です</source>
        <translation>Version %@ is available</translation>
    </message>
    <message id="update.body">
        <source>%{site} から最新版をダウンロードできます。</source>
        <translation>Download the newest version from %{site}.</translation>
    </message>
    <message id="update.releaseNotes.title">
        <source>変更点</source>
        <translation>What’s New</translation>
    </message>
    <message id="update.releaseNotes.link">
        <source>変更点を見る</source>
        <translation>See what’s new</translation>
    </message>
    <message id="update.section">
        <source>アップデート</source>
        <translation>Updates</translation>
    </message>
    <message id="update.settingsBody">
        <source>新しいバージョンがあるか確認し、見つかった場合は %{site} からダウンロードできます。</source>
        <translation>Looks for a newer version. If there is one, you can download it from %{site}.</translation>
    </message>
    <message id="update.action">
        <source>今すぐ更新</source>
        <translation>Update Now</translation>
    </message>
    <message id="update.openSite">
        <source>配布ページ</source>
        <translation>Website</translation>
    </message>
    <message id="update.notConfigured">
        <source>開発ビルドではSparkle公開鍵が未設定のため、配布ページを開きます。</source>
        <translation>This development build has no Sparkle public key, so the website is opened instead.</translation>
    </message>
    <message id="token.missing.title">
        <source>Claudeトークンを取得できません</source>
        <translation>No Claude token</translation>
    </message>
    <message id="token.missing.body">
        <source>KeychainアクセスとClaude Codeのログイン状態を確認してください。ログイン済みでも取得できない場合は「claude auth login」で再ログインしてください。</source>
        <translation>Check keychain access and that Claude Code is logged in. If it is, log in again with “claude auth login”.</translation>
    </message>
    <message id="token.expired.title">
        <source>Claudeトークンが期限切れです</source>
        <translation>The Claude token has expired</translation>
    </message>
    <message id="token.expired.body">
        <source>更新ボタンかClaude Codeの実行で復旧します。それまでClaudeの%は推定値（~付き）です。</source>
        <translation>Renew it here or run Claude Code once. Until then Claude’s figures are estimates, marked with ~.</translation>
    </message>
    <message id="token.refresh">
        <source>今すぐ更新</source>
        <translation>Renew Now</translation>
    </message>
    <message id="api.status.format">
        <source>Claude使用量API: %@</source>
        <translation>Claude usage API: %@</translation>
    </message>
    <message id="api.status.ok">
        <source>正常 (%@ に取得)</source>
        <translation>OK (as of %@)</translation>
    </message>
    <message id="api.status.http">
        <source>HTTPエラー %d</source>
        <translation>HTTP error %d</translation>
    </message>
    <message id="api.status.parse">
        <source>応答の解析に失敗</source>
        <translation>The answer could not be read</translation>
    </message>
    <message id="api.status.expired">
        <source>トークン期限切れ。Claude Codeを一度実行すると更新されます</source>
        <translation>Token expired. Running Claude Code once renews it</translation>
    </message>
    <message id="api.status.noToken">
        <source>トークン未検出。KeychainアクセスとClaude Codeのログイン状態を確認してください。ログイン済みでも取得できない場合は、ターミナルで「claude auth login」を実行して再ログインしてください</source>
        <translation>No token found. Check keychain access and that Claude Code is logged in. If it is, run “claude auth login” in a terminal to log in again</translation>
    </message>
    <message id="api.status.network">
        <source>通信エラー</source>
        <translation>Network error</translation>
    </message>
    <message id="api.status.never">
        <source>未実行</source>
        <translation>Not asked yet</translation>
    </message>
    <message id="settings.cliIntegration">
        <source>CLI連携</source>
        <translation>CLI Integration</translation>
    </message>
    <message id="settings.cliLocalDataNotice">
        <source>メールやパスワードは使わず、各CLIのローカルデータを読み取ります。</source>
        <translation>No e-mail address, no password: only the local data of each CLI is read.</translation>
    </message>
    <message id="settings.recheck">
        <source>再チェック</source>
        <translation>Check Again</translation>
    </message>
    <message id="settings.data.format">
        <source>データ: %@</source>
        <translation>Data: %@</translation>
    </message>
    <message id="settings.widgetSection">
        <source>ウィジェットと常駐</source>
        <translation>Widget and Login</translation>
    </message>
    <message id="settings.widgetNote">
        <source>ウィジェットは本アプリが書き出したデータを表示するため、アプリ終了中は更新されません。ログイン時の自動起動を有効にしておくことを推奨します。</source>
        <translation>The widget shows what this application has written, so it stands still while the application is closed. Starting at login is recommended.</translation>
    </message>
    <message id="settings.launchAtLogin">
        <source>ログイン時に自動起動</source>
        <translation>Start at login</translation>
    </message>
    <message id="settings.launchAtLogin.needsApproval">
        <source>システム設定の「ログイン項目」で Tallyglass を許可してください</source>
        <translation>Allow Tallyglass under “Login Items” in System Settings</translation>
    </message>
    <message id="alerts.enable">
        <source>使用量がしきい値に達したら通知</source>
        <translation>Notify when usage reaches the threshold</translation>
    </message>
    <message id="alerts.needsApproval">
        <source>システム設定の「通知」で Tallyglass を許可してください</source>
        <translation>Allow Tallyglass under “Notifications” in System Settings</translation>
    </message>
    <message id="alerts.threshold.format">
        <source>しきい値 %@</source>
        <translation>Threshold %@</translation>
    </message>
    <message id="alerts.body">
        <source>%1$@ の使用量が %2$@ に達しました</source>
        <translation>%1$@ usage has reached %2$@</translation>
    </message>
    <message id="budgets.section">
        <source>トークン予算(%推定用)</source>
        <translation>Token Budgets (for estimated %)</translation>
    </message>
    <message id="cli.claude.bridgeReady">
        <source>Claude CodeのstatusLineブリッジは設定済みです。</source>
        <translation>The Claude Code status line bridge is set up.</translation>
    </message>
    <message id="cli.claude.bridgeMissing">
        <source>Claude CodeのstatusLineブリッジが未設定です。設定画面の案内に従って有効化してください。</source>
        <translation>The Claude Code status line bridge is not set up. The settings tell how to.</translation>
    </message>
    <message id="report.progress.format">
        <source>ログを読み取り中… %@ / %@ MB</source>
        <translation>Reading logs… %@ / %@ MB</translation>
    </message>
    <message id="report.noLogs.format">
        <source>%@以下に、この1か月のログが見つかりません</source>
        <translation>no logs found below %@ for the last month</translation>
    </message>
    <message id="command.cannotWrite.format">
        <source>出力を書き込めません: %@</source>
        <translation>the output cannot be written: %@</translation>
    </message>
    <message id="command.unknownWord.format">
        <source>不明な引数「%@」（使い方: tallyglass --help）</source>
        <translation>unknown argument “%@” (see tallyglass --help)</translation>
    </message>
    <message id="command.unknownWindow.format">
        <source>不明な期間「%@」（%@のいずれか）</source>
        <translation>unknown window “%@” (one of %@)</translation>
    </message>
    <message id="command.noProgram.format">
        <source>%@がありません</source>
        <translation>%@ is missing</translation>
    </message>
    <message id="command.jsonIsWhole">
        <source>--jsonは全期間を出力するため、--windowと併用できません</source>
        <translation>--json prints every window and cannot be combined with --window</translation>
    </message>
    <message id="command.help">
        <source>使い方: tallyglass [コマンド] [オプション]

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
  --version          バージョンを表示します</source>
        <translation>Usage: tallyglass [command] [options]

Shows how much of their allowance AI coding CLIs (%2$@) have used.

Commands:
  (none)             stays in the tray and counts every five minutes
  report             counts the logs once and prints a table; uses no network, writes no file
    --window WINDOW  prints one window only: %1$@
    --count COUNTING every (record of the logs, unless told) or once (each answer)
    --json           prints the same JSON as usage_snapshot.json
  explain            lists the records behind a figure, each with its file and line
    --window WINDOW  one of %1$@; five hours otherwise
    --tool TOOL      one of %3$@
    --model MODEL    only records that name this model
    --count COUNTING as for report
    --all            every record and every reading of the limit
    --json           prints one JSON object a line
  audit              shows both ways of counting, why they differ, and logs that are not read
    --window WINDOW  shows only one of %1$@
    --json           prints JSON
  status             prints one line of what was stored last, for a prompt or a status bar
    --window WINDOW  one of %1$@; five hours otherwise
    --tool TOOL      one of %3$@
    --format FORMAT  the line, with {all}; {tool}, {percent}, {tokens}, {reset}, {pace} of the tool
                     used most; {window}, {age}, {stale}
    --json           prints JSON for a custom module of Waybar
  bridge             gets Claude Code's limits from its status line
                     (--install, --uninstall, --status)

Options:
  --demo             uses made-up logs in place of your home folder
  --help             prints this help
  --version          prints the version</translation>
    </message>
    <message id="command.unknownCounting.format">
        <source>不明な数え方「%@」（every、onceのいずれか）</source>
        <translation>unknown way of counting "%@" (one of every, once)</translation>
    </message>
    <message id="command.unknownTool.format">
        <source>不明なツール「%@」（%@のいずれか）</source>
        <translation>unknown tool "%@" (one of %@)</translation>
    </message>
    <message id="command.jsonHasAll">
        <source>--jsonは常にすべてを出力するため、--allと併用できません</source>
        <translation>--json always prints everything and cannot be combined with --all</translation>
    </message>
    <message id="age.minutes.format">
        <source>%d分前</source>
        <translation>%d min ago</translation>
    </message>
    <message id="age.hours.format">
        <source>%d時間前</source>
        <translation>%d h ago</translation>
    </message>
    <message id="age.days.format">
        <source>%d日前</source>
        <translation>%d d ago</translation>
    </message>
    <message id="explain.others.format">
        <source>ほか%@件（--allで表示）</source>
        <translation>%@ more (--all shows them)</translation>
    </message>
    <message id="explain.sum.format">
        <source>合計（%@件）</source>
        <translation>sum (%@ records)</translation>
    </message>
    <message id="explain.noLimit">
        <source>ツールが報告した上限はありません</source>
        <translation>No tool reports a limit</translation>
    </message>
    <message id="explain.read.format">
        <source>読み取り %@（%@）</source>
        <translation>read %@ (%@)</translation>
    </message>
    <message id="explain.reset.format">
        <source>リセット %@（%@）</source>
        <translation>resets %@ (%@)</translation>
    </message>
    <message id="explain.resetPassed.format">
        <source>リセット %@（経過済み）</source>
        <translation>reset %@ (has passed)</translation>
    </message>
    <message id="explain.noReset">
        <source>リセット時刻なし</source>
        <translation>no reset time</translation>
    </message>
    <message id="explain.otherLimits.format">
        <source>採用されなかった読み取り %@件</source>
        <translation>%@ other readings, not used</translation>
    </message>
    <message id="explain.endpointLimit.format">
        <source>保存された集計の上限 %@（Claude使用量APIから）</source>
        <translation>Limit of the stored figures %@ (from the Claude usage API)</translation>
    </message>
    <message id="audit.everyRecord">
        <source>記録すべて</source>
        <translation>Every record</translation>
    </message>
    <message id="audit.eachAnswerOnce">
        <source>回答1回ずつ</source>
        <translation>Each answer once</translation>
    </message>
    <message id="audit.factor">
        <source>倍率</source>
        <translation>Factor</translation>
    </message>
    <message id="audit.records">
        <source>記録数</source>
        <translation>Records</translation>
    </message>
    <message id="audit.blocks">
        <source>同じ回答のブロック</source>
        <translation>blocks of one answer</translation>
    </message>
    <message id="audit.resumed">
        <source>再開・分岐したファイル</source>
        <translation>resumed or forked files</translation>
    </message>
    <message id="audit.innerCopies">
        <source>記録の中の写し</source>
        <translation>copies within records</translation>
    </message>
    <message id="audit.repeats">
        <source>繰り返し</source>
        <translation>repeats</translation>
    </message>
    <message id="audit.replays">
        <source>分岐元の再生</source>
        <translation>replays of the parent</translation>
    </message>
    <message id="audit.runningTotals">
        <source>累計値</source>
        <translation>running totals</translation>
    </message>
    <message id="audit.parts">
        <source>内訳の二重計上</source>
        <translation>parts counted twice</translation>
    </message>
    <message id="audit.earlierRuns">
        <source>数えられていない実行</source>
        <translation>runs not counted</translation>
    </message>
    <message id="audit.statedTotals">
        <source>記載された合計との差</source>
        <translation>beside stated totals</translation>
    </message>
    <message id="audit.tooLarge">
        <source>大きすぎるファイル</source>
        <translation>too large</translation>
    </message>
    <message id="audit.compressed">
        <source>圧縮されたファイル</source>
        <translation>compressed</translation>
    </message>
    <message id="audit.unreadable">
        <source>読み取れません</source>
        <translation>unreadable</translation>
    </message>
    <message id="audit.notUtf8">
        <source>UTF-8ではありません</source>
        <translation>not UTF-8</translation>
    </message>
    <message id="audit.brokenLines">
        <source>壊れた行</source>
        <translation>broken lines</translation>
    </message>
    <message id="audit.tornLine">
        <source>途中で切れた最終行</source>
        <translation>torn last line</translation>
    </message>
    <message id="audit.allRead">
        <source>読み取られなかったログはありません</source>
        <translation>Every log was read</translation>
    </message>
    <message id="audit.notRead.format">
        <source>読み取られなかったログ（%@件）</source>
        <translation>Logs that were not read, or not all of them (%@)</translation>
    </message>
    <message id="audit.size.format">
        <source>%@ KB</source>
        <translation>%@ KB</translation>
    </message>
    <message id="audit.lines.format">
        <source>%@行目</source>
        <translation>line %@</translation>
    </message>
    <message id="command.unknownPlaceholder.format">
        <source>不明な項目「{%@}」（all、tool、percent、tokens、reset、pace、window、age、staleのいずれか）</source>
        <translation>unknown placeholder "{%@}" (one of all, tool, percent, tokens, reset, pace, window, age, stale)</translation>
    </message>
    <message id="pace.title">
        <source>見込み</source>
        <translation>At reset</translation>
    </message>
    <message id="pace.usedUp.format">
        <source>%@（%@で上限）</source>
        <translation>%@ (used up in %@)</translation>
    </message>
    <message id="status.pace.format">
        <source>見込み %@</source>
        <translation>at reset %@</translation>
    </message>
    <message id="status.stale.format">
        <source>（%@のデータ）</source>
        <translation>(figures of %@)</translation>
    </message>
    <message id="settings.countsAnswersOnce">
        <source>同じ回答は1回だけ数える</source>
        <translation>Count each answer once</translation>
    </message>
    <message id="settings.countsAnswersOnce.note">
        <source>ログには同じ回答が何度も記録されます。オフのときは、記録をすべて数えます。</source>
        <translation>Logs repeat answers; as it is, every record counts.</translation>
    </message>
    <message id="provider.codex">
        <source>Codex</source>
        <translation>Codex</translation>
    </message>
    <message id="cli.codex.installHint">
        <source>Codex CLIまたはCodexアプリをインストールし、ログイン後に一度起動してください。</source>
        <translation>Install the Codex CLI or the Codex app, log in, and start it once.</translation>
    </message>
    <message id="provider.claude">
        <source>Claude Code</source>
        <translation>Claude Code</translation>
    </message>
    <message id="provider.claude.short">
        <source>Claude</source>
        <translation>Claude</translation>
    </message>
    <message id="cli.claude.installHint">
        <source>Claude Code CLIをインストールし、ログイン後に一度起動してください。</source>
        <translation>Install the Claude Code CLI, log in, and start it once.</translation>
    </message>
    <message id="provider.copilot">
        <source>GitHub Copilot</source>
        <translation>GitHub Copilot</translation>
    </message>
    <message id="provider.copilot.short">
        <source>Copilot</source>
        <translation>Copilot</translation>
    </message>
    <message id="cli.copilot.installHint">
        <source>GitHub Copilot CLIをインストールし、ログイン後に一度起動してください。使用量はセッションのevents.jsonlから集計されます。</source>
        <translation>Install the GitHub Copilot CLI, log in, and start it once. Usage is summed up from the events.jsonl of its sessions.</translation>
    </message>
    <message id="window.short.fiveHours">
        <source>5h</source>
        <translation>5h</translation>
    </message>
    <message id="window.short.hour">
        <source>1h</source>
        <translation>1h</translation>
    </message>
    <message id="window.short.day">
        <source>日</source>
        <translation>Day</translation>
    </message>
    <message id="window.short.week">
        <source>週</source>
        <translation>Week</translation>
    </message>
    <message id="limit.window.sevenDays">
        <source>7日</source>
        <translation>7 days</translation>
    </message>
    <message id="window.short.month">
        <source>月</source>
        <translation>Month</translation>
    </message>
</context>
</TS>
