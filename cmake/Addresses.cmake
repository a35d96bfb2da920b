# Where the project is to be found. The defaults are placeholders: whoever publishes it names the own
# addresses (CONTRIBUTING.md lists what they appear in).
set(SWEEPWRIGHT_WEBSITE "https://sweepwright.example/" CACHE STRING "The project's website")
set(SWEEPWRIGHT_REPOSITORY "https://sweepwright.example/repository" CACHE STRING "Its sources")
set(SWEEPWRIGHT_ISSUES "https://sweepwright.example/issues" CACHE STRING "Where faults are reported")
set(SWEEPWRIGHT_TELEGRAM "https://sweepwright.example/telegram" CACHE STRING "Its Telegram channel")
set(SWEEPWRIGHT_WECHAT "https://sweepwright.example/wechat" CACHE STRING "Its WeChat account")
set(SWEEPWRIGHT_HANDLE "@sweepwright" CACHE STRING "The maker's name in the app's credit line")
set(SWEEPWRIGHT_PICTURES "https://sweepwright.example/pictures" CACHE STRING
  "Where docs/pictures can be fetched from, for software centres")
set(SWEEPWRIGHT_CONTACT "maintainers@sweepwright.example" CACHE STRING
  "The mail address of who makes the packages")
