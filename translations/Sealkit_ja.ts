<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP" sourcelanguage="en">
<context>
    <name>CustomerSignStepWidget</name>
    <message>
        <source>Command:</source>
        <translation>コマンド:</translation>
    </message>
    <message>
        <source>Binaries key:</source>
        <translation>バイナリ用の鍵:</translation>
    </message>
    <message>
        <source>Packages key:</source>
        <translation>パッケージ用の鍵:</translation>
    </message>
    <message>
        <source>Packages certificate:</source>
        <translation>パッケージ用の証明書:</translation>
    </message>
    <message>
        <source>Packages client certificate:</source>
        <translation>パッケージ用のクライアント証明書:</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;If this option is disabled, packages debuginfo and debugsource will not be signed&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;このオプションが無効の場合、debuginfo と debugsource のパッケージには署名しません&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>Sign debug package</source>
        <translation>デバッグパッケージにも署名する</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Error: key and certificate can&apos;t be empty</source>
        <translation>エラー: 鍵と証明書を指定してください</translation>
    </message>
    <message>
        <source>Error: key and certificate must be inside workspace folder: %1</source>
        <translation>エラー: 鍵と証明書はワークスペースフォルダーの中に置いてください: %1</translation>
    </message>
    <message>
        <source>Error: keys and certificate can&apos;t be empty</source>
        <translation>エラー: 両方の鍵と証明書を指定してください</translation>
    </message>
    <message>
        <source>Error: keys and certificate must be inside workspace folder: %1</source>
        <translation>エラー: 両方の鍵と証明書はワークスペースフォルダーの中に置いてください: %1</translation>
    </message>
    <message>
        <source>No Build Engine found</source>
        <translation>ビルドエンジンが見つかりません</translation>
    </message>
    <message>
        <source>Could not open %1 for writing: %2.</source>
        <translation>%1 を書き込み用に開けませんでした: %2</translation>
    </message>
    <message>
        <source>Could not write data to %1: %2.</source>
        <translation>%1 に書き込めませんでした: %2</translation>
    </message>
    <message>
        <source>Error: the kit has no build engine</source>
        <translation>エラー: キットにビルドエンジンがありません</translation>
    </message>
    <message>
        <source>Error: the kit has no build target</source>
        <translation>エラー: キットにビルドターゲットがありません</translation>
    </message>
    <message>
        <source>Error: cannot start &quot;%1&quot;: %2</source>
        <translation>エラー: 「%1」を起動できません: %2</translation>
    </message>
    <message>
        <source>Company name cannot contain %1</source>
        <translation>会社名に %1 は使えません</translation>
    </message>
    <message>
        <source>Company name cannot have more than one line</source>
        <translation>会社名を複数行にすることはできません</translation>
    </message>
    <message>
        <source>Company name cannot begin or end with a blank</source>
        <translation>会社名の先頭と末尾に空白は使えません</translation>
    </message>
    <message>
        <source>Company name cannot have more than %1 characters</source>
        <translation>会社名は %1 文字以内にしてください</translation>
    </message>
    <message>
        <source>Company name field cannot be empty</source>
        <translation>会社名を入力してください</translation>
    </message>
    <message>
        <source>Key field cannot be empty</source>
        <translation>鍵を指定してください</translation>
    </message>
    <message>
        <source>Request field cannot be empty</source>
        <translation>署名要求を指定してください</translation>
    </message>
    <message>
        <source>Key and request cannot be the same file</source>
        <translation>鍵と署名要求を同じファイルにすることはできません</translation>
    </message>
    <message>
        <source>The request would overwrite the private key in %1</source>
        <translation>署名要求が %1 の秘密鍵を上書きしてしまいます</translation>
    </message>
    <message>
        <source>Error: package sign cancelled</source>
        <translation>エラー: 署名はキャンセルされました</translation>
    </message>
    <message>
        <source>Error: package sign failed</source>
        <translation>エラー: 署名に失敗しました</translation>
    </message>
    <message>
        <source>The tool could not be started; see the General Messages</source>
        <translation>ツールを起動できませんでした。一般メッセージを参照してください</translation>
    </message>
    <message>
        <source>Cancelled: no pass phrase was given</source>
        <translation>キャンセル: パスフレーズが入力されませんでした</translation>
    </message>
    <message>
        <source>The tool gave no reason; its exit code was %1</source>
        <translation>ツールは理由を示しませんでした。終了コードは %1 でした</translation>
    </message>
    <message>
        <source>The path must be inside workspace folder:
%1</source>
        <translation>パスはワークスペースフォルダーの中でなければなりません:
%1</translation>
    </message>
    <message>
        <source>Stopped by the user</source>
        <translation>ユーザーによって中止されました</translation>
    </message>
    <message>
        <source>Stopped: the IDE closes</source>
        <translation>中止: IDE が終了します</translation>
    </message>
    <message>
        <source>Stopped: the step or dialog that started the tool is gone</source>
        <translation>中止: ツールを起動したステップまたはダイアログがなくなりました</translation>
    </message>
    <message>
        <source>The request would overwrite %1, which is no certificate signing request</source>
        <translation>証明書署名要求ではない %1 が要求で上書きされてしまいます</translation>
    </message>
    <message>
        <source>There is no private key in this file</source>
        <translation>このファイルに秘密鍵はありません</translation>
    </message>
    <message>
        <source>It belongs to another key. %1</source>
        <translation>別の鍵の証明書です。%1</translation>
    </message>
    <message>
        <source>The two pass phrases differ (Verify failure)</source>
        <translation>2 回のパスフレーズが異なります (Verify failure)</translation>
    </message>
    <message>
        <source>A pass phrase has 4 to 1024 bytes (%1)</source>
        <translation>パスフレーズは 4 ～ 1024 バイトです (%1)</translation>
    </message>
</context>
<context>
    <name>RpmsignExternalWidget</name>
    <message>
        <source>Global keys are used</source>
        <translation>グローバルの鍵を使用</translation>
    </message>
    <message>
        <source>Key:</source>
        <translation>鍵:</translation>
    </message>
    <message>
        <source>Certificate:</source>
        <translation>証明書:</translation>
    </message>
</context>
<context>
    <name>Sealkit::Constants</name>
    <message>
        <source>Select certificate (*.pem)</source>
        <translation>証明書を選択 (*.pem)</translation>
    </message>
    <message>
        <source>Select key file (*.pem)</source>
        <translation>鍵ファイルを選択 (*.pem)</translation>
    </message>
    <message>
        <source>Select RPM package</source>
        <translation>RPM パッケージを選択</translation>
    </message>
    <message>
        <source>RPM package (*.rpm)</source>
        <translation>RPM パッケージ (*.rpm)</translation>
    </message>
    <message>
        <source>Select Privacy-Enhanced Mail container</source>
        <translation>PEM コンテナーを選択</translation>
    </message>
    <message>
        <source>Privacy-Enhanced Mail container (*.pem)</source>
        <translation>PEM コンテナー (*.pem)</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::CertificateSummary</name>
    <message>
        <source>Expired on %1: %2</source>
        <translation>%1 に期限切れ: %2</translation>
    </message>
    <message>
        <source>Not valid before %1: %2</source>
        <translation>%1 から有効: %2</translation>
    </message>
    <message>
        <source>Valid until %1: %2</source>
        <translation>%1 まで有効: %2</translation>
    </message>
    <message>
        <source>There is no certificate in this file</source>
        <translation>このファイルには証明書がありません</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::CustomerSignStep</name>
    <message>
        <source>RPM Sign (customer-sign)</source>
        <translation>RPM Sign (customer-sign)</translation>
    </message>
    <message>
        <source>Signing RPM package...</source>
        <translation>RPM パッケージに署名しています...</translation>
    </message>
    <message>
        <source>Error: No previous &quot;%1&quot; step found</source>
        <translation>エラー: これより前にステップ「%1」がありません</translation>
    </message>
    <message>
        <source>Error: no package for sign found</source>
        <translation>エラー: 署名するパッケージが見つかりません</translation>
    </message>
    <message>
        <source>Package sign completed successfully.</source>
        <translation>パッケージの署名が完了しました。</translation>
    </message>
    <message>
        <source>Package sign stopped by user</source>
        <translation>署名はユーザーによって中止されました</translation>
    </message>
    <message>
        <source>Sign RPM package</source>
        <translation>RPM パッケージに署名</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::CustomerSignStepWidget</name>
    <message>
        <source>Select binaries key</source>
        <translation>バイナリ用の鍵を選択</translation>
    </message>
    <message>
        <source>Select packages key</source>
        <translation>パッケージ用の鍵を選択</translation>
    </message>
    <message>
        <source>Select packages certificate</source>
        <translation>パッケージ用の証明書を選択</translation>
    </message>
    <message>
        <source>Select packages client certificate</source>
        <translation>パッケージ用のクライアント証明書を選択</translation>
    </message>
    <message>
        <source>The path must be inside shared folders:
%1
%2</source>
        <translation>パスは共有フォルダーの中でなければなりません:
%1
%2</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::PasswordDialogPrivate</name>
    <message>
        <source>Password:</source>
        <translation>パスワード:</translation>
    </message>
    <message>
        <source>Password can&apos;t be empty</source>
        <translation>パスワードを入力してください</translation>
    </message>
    <message>
        <source>Password contains invalid newline characters</source>
        <translation>パスワードに改行文字を含めることはできません</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::ResultView</name>
    <message>
        <source>Signatures successfully verified</source>
        <translation>署名の検証に成功しました</translation>
    </message>
    <message>
        <source>Could not verify signatures</source>
        <translation>署名を検証できませんでした</translation>
    </message>
    <message>
        <source>Package can&apos;t be verified</source>
        <translation>パッケージを検証できません</translation>
    </message>
    <message>
        <source>No signatures found in package</source>
        <translation>パッケージに署名がありません</translation>
    </message>
    <message>
        <source>Package can&apos;t be dumped</source>
        <translation>パッケージの署名の内容を表示できません</translation>
    </message>
    <message>
        <source>OpenSSL not found in target &apos;%1&apos;, please install it.</source>
        <translation>ターゲット「%1」に OpenSSL がありません。インストールしてください。</translation>
    </message>
    <message>
        <source>Available in: Tools - Options - Veyra OS - Manage Build Targets</source>
        <translation>場所: ツール - オプション - Veyra OS - Manage Build Targets</translation>
    </message>
    <message>
        <source>Target %1 cannot sign: it has neither rpmsign-external nor customer-sign</source>
        <translation>ターゲット %1 は署名できません。rpmsign-external も customer-sign もありません</translation>
    </message>
    <message>
        <source>Target %1 can only sign: without nxvcert-cli, signatures are neither shown nor removed</source>
        <translation>ターゲット %1 は署名しかできません。nxvcert-cli がないため、署名の表示と削除はできません</translation>
    </message>
    <message>
        <source>%1: signing failed at %2</source>
        <translation>%1: %2 の署名に失敗しました</translation>
    </message>
    <message>
        <source>%1: signed by %2 at %3</source>
        <translation>%1: %3 に %2 が署名しました</translation>
    </message>
    <message>
        <source>%1: removing failed at %2</source>
        <translation>%1: %2 の削除に失敗しました</translation>
    </message>
    <message>
        <source>The existing key %1 was used (%2)</source>
        <translation>既存の鍵 %1 を使用しました (%2)</translation>
    </message>
    <message>
        <source>unknown kind</source>
        <translation>種類不明</translation>
    </message>
    <message>
        <source>This key exists and is used as it is, whatever its algorithm</source>
        <translation>この鍵は既に存在し、アルゴリズムにかかわらずそのまま使用されます</translation>
    </message>
    <message>
        <source>There is no private key in this file</source>
        <translation>このファイルに秘密鍵はありません</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::RpmsignExternal</name>
    <message>
        <source>Filed to generate CSR</source>
        <translation>証明書署名要求 (CSR) を生成できませんでした</translation>
    </message>
    <message>
        <source>The request is empty; is the disk full?</source>
        <translation>署名要求が空です。ディスクの空き容量を確認してください</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::RpmsignExternalStep</name>
    <message>
        <source>RPM Sign (rpmsign-external)</source>
        <translation>RPM Sign (rpmsign-external)</translation>
    </message>
    <message>
        <source>Signing RPM package...</source>
        <translation>RPM パッケージに署名しています...</translation>
    </message>
    <message>
        <source>Error: No previous &quot;%1&quot; step found</source>
        <translation>エラー: これより前にステップ「%1」がありません</translation>
    </message>
    <message>
        <source>Error: no package for sign found</source>
        <translation>エラー: 署名するパッケージが見つかりません</translation>
    </message>
    <message>
        <source>Package sign completed successfully.</source>
        <translation>パッケージの署名が完了しました。</translation>
    </message>
    <message>
        <source>Failed to verify signature dump</source>
        <translation>署名の内容を確認できませんでした</translation>
    </message>
    <message>
        <source>Note: Packages %1 signed with developer key, use is possible only for development purposes. Read more: %2</source>
        <translation>注意: パッケージ %1 は開発者の鍵で署名されているため、開発目的でのみ使用できます。詳細: %2</translation>
    </message>
    <message>
        <source>Note: Packages %1 is not signed. Deployment to the device is not possible. Read more: %2</source>
        <translation>注意: パッケージ %1 は署名されていないため、デバイスに配置できません。詳細: %2</translation>
    </message>
    <message>
        <source>Package sign stopped by user</source>
        <translation>署名はユーザーによって中止されました</translation>
    </message>
    <message>
        <source>Sign RPM package</source>
        <translation>RPM パッケージに署名</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::RpmsignExternalWidget</name>
    <message>
        <source>User private key for signing the package</source>
        <translation>パッケージの署名に使うユーザーの秘密鍵</translation>
    </message>
    <message>
        <source>Certificate to be used in signature</source>
        <translation>署名に使う証明書</translation>
    </message>
    <message>
        <source>Default key</source>
        <translation>既定の鍵</translation>
    </message>
    <message>
        <source>Custom key</source>
        <translation>個別の鍵</translation>
    </message>
    <message>
        <source>Custom keys are used</source>
        <translation>個別の鍵を使用</translation>
    </message>
    <message>
        <source>Global keys are used</source>
        <translation>グローバルの鍵を使用</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::SealkitPlugin</name>
    <message>
        <source>&amp;Sign Packages</source>
        <translation>パッケージの署名(&amp;S)</translation>
    </message>
    <message>
        <source>[E] Failed to copy regular keys:	%1</source>
        <translation>[E] regular の鍵をコピーできませんでした:	%1</translation>
    </message>
    <message>
        <source>[W] Please make sure that the &apos;%1&apos; is writable and restart the ide</source>
        <translation>[W] 「%1」に書き込めることを確認して、IDE を再起動してください</translation>
    </message>
    <message>
        <source>[W] OR</source>
        <translation>[W] または</translation>
    </message>
    <message>
        <source>[W] Specify the path to the default signature keys in the settings</source>
        <translation>[W] 設定で既定の署名鍵のパスを指定してください</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::SignDialog</name>
    <message>
        <source>Select root certificate</source>
        <translation>ルート証明書を選択</translation>
    </message>
    <message>
        <source>Specify path to save key file or select existing key file</source>
        <translation>鍵ファイルの保存先を指定するか、既存の鍵ファイルを選択</translation>
    </message>
    <message>
        <source>Specify path to save Certificate Signing Request file</source>
        <translation>証明書署名要求 (CSR) ファイルの保存先を指定</translation>
    </message>
    <message>
        <source>Path to PEM-encoded bundle with root certificates. If not set, default value will be used.</source>
        <translation>ルート証明書をまとめた PEM 形式のファイルのパス。指定しない場合は既定値を使用します。</translation>
    </message>
    <message>
        <source>Updating targets...</source>
        <translation>ターゲットを更新しています...</translation>
    </message>
    <message>
        <source>RSA (2048)</source>
        <translation>RSA (2048)</translation>
    </message>
    <message>
        <source>GOST R 34.10-2012 (256)</source>
        <translation>GOST R 34.10-2012 (256)</translation>
    </message>
    <message>
        <source>File does not exist</source>
        <translation>ファイルが存在しません</translation>
    </message>
    <message>
        <source>Failed to generate request: %1</source>
        <translation>署名要求を生成できませんでした: %1</translation>
    </message>
    <message>
        <source>There is no build engine: open or repair the SDK</source>
        <translation>ビルドエンジンがありません。SDK を開くか修復してください</translation>
    </message>
    <message>
        <source>The build engine did not start; see the General Messages</source>
        <translation>ビルドエンジンが起動しませんでした。一般メッセージを参照してください</translation>
    </message>
    <message>
        <source>The build engine has no targets: install one</source>
        <translation>ビルドエンジンにターゲットがありません。インストールしてください</translation>
    </message>
    <message>
        <source>No client signature was added: it needs a client key and its certificate</source>
        <translation>クライアントの署名は追加されませんでした。クライアントの鍵とその証明書の両方が必要です</translation>
    </message>
    <message>
        <source>No browser opened %1</source>
        <translation>%1 を開くブラウザがありません</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::SignOptionsPage</name>
    <message>
        <source>Sign packages</source>
        <translation>パッケージの署名</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::SignOptionsWidget</name>
    <message>
        <source>The path to the key file that will be used by default to sign rpm packages</source>
        <translation>RPM パッケージの署名に既定で使う鍵ファイルのパス</translation>
    </message>
    <message>
        <source>The path to the certificate file that will be used by default to sign rpm packages</source>
        <translation>RPM パッケージの署名に既定で使う証明書ファイルのパス</translation>
    </message>
    <message>
        <source>Regular key</source>
        <translation>regular の鍵</translation>
    </message>
    <message>
        <source>Custom key</source>
        <translation>個別の鍵</translation>
    </message>
    <message>
        <source>Regular certificate</source>
        <translation>regular の証明書</translation>
    </message>
    <message>
        <source>Custom certificate</source>
        <translation>個別の証明書</translation>
    </message>
    <message>
        <source>No file is chosen</source>
        <translation>ファイルが選択されていません</translation>
    </message>
    <message>
        <source>File does not exist</source>
        <translation>ファイルが存在しません</translation>
    </message>
    <message>
        <source>There is no private key in this file</source>
        <translation>このファイルに秘密鍵はありません</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::SignTool</name>
    <message>
        <source>Second of two times, for the new key %1</source>
        <translation>新しい鍵 %1 のパスフレーズ(2 回のうち 2 回目)</translation>
    </message>
    <message>
        <source>First of two times, for the new key %1</source>
        <translation>新しい鍵 %1 のパスフレーズ(2 回のうち 1 回目)</translation>
    </message>
</context>
<context>
    <name>SignDialog</name>
    <message>
        <source>Sign Packages</source>
        <translation>パッケージの署名</translation>
    </message>
    <message>
        <source>NOTE: Move keys to workspace folder, if you change it</source>
        <translation>注意: ワークスペースフォルダーを変更した場合は、鍵をそこへ移動してください</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;For the &lt;span style=&quot; font-weight:700;&quot;&gt;regular&lt;/span&gt; profile, the key and certificate can be found in the &lt;a href=&quot;%folder_link%&quot;&gt;&lt;span style=&quot; text-decoration: underline; color:#2980b9;&quot;&gt;folder&lt;/span&gt;&lt;/a&gt;&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;&lt;span style=&quot; font-weight:700;&quot;&gt;regular&lt;/span&gt; プロファイルの鍵と証明書はこの&lt;a href=&quot;%folder_link%&quot;&gt;&lt;span style=&quot; text-decoration: underline; color:#2980b9;&quot;&gt;フォルダー&lt;/span&gt;&lt;/a&gt;にあります&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Developer signature dump&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;開発者の署名の内容&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Client signature dump&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;クライアントの署名の内容&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>&amp;Target</source>
        <translation>ターゲット(&amp;T)</translation>
    </message>
    <message>
        <source>RPM &amp;package</source>
        <translation>RPM パッケージ(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;Sign</source>
        <translation>署名(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Binary key</source>
        <translation>バイナリ用の鍵(&amp;B)</translation>
    </message>
    <message>
        <source>&amp;Developer key</source>
        <translation>開発者の鍵(&amp;D)</translation>
    </message>
    <message>
        <source>D&amp;eveloper certificate</source>
        <translation>開発者の証明書(&amp;E)</translation>
    </message>
    <message>
        <source>Client &amp;key</source>
        <translation>クライアントの鍵(&amp;K)</translation>
    </message>
    <message>
        <source>Client certi&amp;ficate</source>
        <translation>クライアントの証明書(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Add signature</source>
        <translation>署名を追加(&amp;A)</translation>
    </message>
    <message>
        <source>&amp;Remove signature</source>
        <translation>署名を削除(&amp;R)</translation>
    </message>
    <message>
        <source>Fill in the regular key and certificate as the developer&apos;s</source>
        <translation>regular の鍵と証明書を開発者のものとして入力します</translation>
    </message>
    <message>
        <source>&amp;Use regular key</source>
        <translation>regular の鍵を使う(&amp;U)</translation>
    </message>
    <message>
        <source>&amp;Verify</source>
        <translation>検証(&amp;V)</translation>
    </message>
    <message>
        <source>CA certi&amp;ficate</source>
        <translation>CA 証明書(&amp;F)</translation>
    </message>
    <message>
        <source>Verif&amp;y signature</source>
        <translation>署名を検証(&amp;Y)</translation>
    </message>
    <message>
        <source>&amp;Dump signature</source>
        <translation>署名を表示(&amp;D)</translation>
    </message>
    <message>
        <source>Certificate generat&amp;ion</source>
        <translation>証明書の生成(&amp;I)</translation>
    </message>
    <message>
        <source>&amp;Key</source>
        <translation>鍵(&amp;K)</translation>
    </message>
    <message>
        <source>A&amp;lgorithm</source>
        <translation>アルゴリズム(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Encrypt</source>
        <translation>暗号化(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Request</source>
        <translation>署名要求(&amp;R)</translation>
    </message>
    <message>
        <source>Company &amp;name</source>
        <translation>会社名(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Generate</source>
        <translation>生成(&amp;G)</translation>
    </message>
</context>
<context>
    <name>SignOptionsWidget</name>
    <message>
        <source>Enable sign step by default</source>
        <translation>署名ステップを既定で有効にする</translation>
    </message>
    <message>
        <source>Default key and certificate</source>
        <translation>既定の鍵と証明書</translation>
    </message>
    <message>
        <source>&amp;Key:</source>
        <translation>鍵(&amp;K):</translation>
    </message>
    <message>
        <source>Ce&amp;rtificate:</source>
        <translation>証明書(&amp;R):</translation>
    </message>
</context>
</TS>
