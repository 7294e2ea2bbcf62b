-- <@text:anchor#totals>
SELECT customer,
       SUM(amount) AS total  -- <@output:table#totals [7,27] {"columns":["customer","total"],"limit":10}>
FROM orders
WHERE placed >= '2024-01-01'  -- <@control:date#since [17,27] {"default":"2024-01-01"}>
GROUP BY customer
-- <@text {"lang":"en","note":"Größte zuerst 🏆"}>
ORDER BY total DESC;
